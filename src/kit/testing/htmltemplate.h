// The look of the HTML report: what stands around its tests. Plain CSS and a script that filters and moves the slider.
#pragma once

// How a report is known as one, so that no other file is written over.
inline constexpr char kHtmlReportMark[] = "<meta name=\"generator\" content=\"kpg test\">";

inline constexpr char kHtmlReportHead[] = R"(<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Page tests</title>
<style>
:root { color-scheme: light dark; --line: #8884; --good: #2a8a4a; --bad: #c8323c; --soft: #8881; }
body { font: 15px/1.5 system-ui, sans-serif; max-width: 1500px; margin: 0 auto; padding: 0 24px 64px; }
header { position: sticky; top: 0; background: Canvas; padding: 12px 0; z-index: 2;
  border-bottom: 1px solid var(--line); display: flex; gap: 24px; align-items: baseline; flex-wrap: wrap; }
h1 { font-size: 20px; margin: 0; }
input[type=search] { font: inherit; padding: 2px 8px; min-width: 220px; }
.test { border: 1px solid var(--line); border-left: 5px solid var(--good); border-radius: 4px; margin: 10px 0; }
.test.failed, .test.error { border-left-color: var(--bad); }
.test > summary, .test > p { padding: 8px 14px; margin: 0; }
.test > summary { cursor: pointer; }
.inside { padding: 0 14px 14px; }
.file { opacity: .65; }
.time { float: right; opacity: .65; }
.message { color: var(--bad); white-space: pre-wrap; font: 14px/1.5 ui-monospace, monospace; margin: 4px 0; }
.pictures { display: grid; grid-template-columns: repeat(auto-fit, minmax(260px, 1fr)); gap: 14px; margin: 12px 0; }
figure { margin: 0; }
figcaption { font-size: 13px; opacity: .75; }
figure img { width: 100%; max-width: 720px; border: 1px solid var(--line); }
.slider { position: relative; max-width: 720px; }
.slider img { display: block; width: 100%; }
.slider .over { position: absolute; top: 0; left: 0; clip-path: inset(0 50% 0 0); }
.slider input { width: 100%; }
.steps li.wrong { color: var(--bad); font-weight: 600; }
.steps { columns: 28em; font: 13px/1.6 ui-monospace, monospace; }
pre { background: var(--soft); padding: 10px; overflow: auto; max-height: 24em; }
h3 { font-size: 14px; margin: 14px 0 2px; }
</style>
)";

inline constexpr char kHtmlReportEnd[] = R"(<script>
const search = document.querySelector('#search'), bad = document.querySelector('#bad');
function filter() {
  for (const test of document.querySelectorAll('.test')) {
    const named = test.dataset.title.toLowerCase().includes(search.value.toLowerCase());
    test.hidden = !named || (bad.checked && test.classList.contains('passed'));
  }
}
search.addEventListener('input', filter);
bad.addEventListener('change', filter);
for (const slider of document.querySelectorAll('.slider'))
  slider.querySelector('input').addEventListener('input', event => {
    slider.querySelector('.over').style.clipPath = `inset(0 ${100 - event.target.value}% 0 0)`;
  });
for (const picture of document.images)
  picture.addEventListener('load', () => {
    if (picture.naturalWidth < picture.clientWidth) picture.style.imageRendering = 'pixelated';
  });
filter();
</script>
)";
