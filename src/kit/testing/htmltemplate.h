// The look of the HTML report: what stands around its tests. Plain CSS and a script that filters and moves the slider.
#pragma once

// How a report is known as one, so that no other file is written over.
inline constexpr char kHtmlReportMark[] = "<meta name=\"generator\" content=\"kpg test\">";

inline constexpr char kHtmlReportHead[] = R"(<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Page tests</title>
<style>
:root { color-scheme: light dark; --line: #8884; --good: #2a8a4a; --bad: #c0242e; --soft: #8881; }
@media (prefers-color-scheme: dark) { :root { --good: #57b877; --bad: #ff8a8f; } }
body { font: 15px/1.5 system-ui, sans-serif; max-width: 1500px; margin: 0 auto; padding: 0 24px 64px; }
header { position: sticky; top: 0; background: Canvas; padding: 12px 0; z-index: 2;
  border-bottom: 1px solid var(--line); display: flex; gap: 6px 24px; align-items: baseline; flex-wrap: wrap; }
h1 { font-size: 20px; margin: 0; }
input[type=search] { font: inherit; padding: 2px 8px; flex: 1 1 160px; max-width: 320px; }
.test { border: 1px solid var(--line); border-left: 5px solid var(--good); border-radius: 4px; margin: 10px 0; }
.test.failed, .test.error { border-left-color: var(--bad); }
.test > summary, .test > p { padding: 8px 14px; margin: 0; overflow-wrap: anywhere; }
.test > summary { cursor: pointer; }
.inside { padding: 0 14px 14px; }
.file { opacity: .65; }
.time { float: right; margin-left: 12px; opacity: .65; }
.message { color: var(--bad); white-space: pre-wrap; overflow-wrap: anywhere; margin: 4px 0;
  font: 14px/1.5 ui-monospace, monospace; }
.pictures { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(260px, 100%), 1fr)); gap: 14px;
  margin: 8px 0 14px; }
.pictures.large { grid-template-columns: repeat(auto-fit, minmax(min(420px, 100%), 1fr)); }
figure { margin: 0; max-width: 720px; }
figcaption { font-size: 13px; opacity: .75; }
figure img { display: block; box-sizing: border-box; width: 100%; border: 1px solid var(--line); }
.slider { position: relative; --at: 50%; }
.slider .over { position: absolute; top: 0; clip-path: inset(0 calc(100% - var(--at)) 0 0); }
.slider::before { content: ""; position: absolute; z-index: 1; top: 0; bottom: 0; left: calc(var(--at) - 1px);
  width: 2px; background: #fff; box-shadow: 0 0 0 1px #0008; }
.slider::after { content: "\2194"; position: absolute; z-index: 1; top: calc(50% - 14px); left: calc(var(--at) - 14px);
  width: 28px; font: 18px/28px sans-serif; text-align: center; color: #222; background: #fff; border-radius: 50%;
  box-shadow: 0 0 0 1px #0008; }
.slider input { position: absolute; z-index: 2; inset: 0; width: 100%; height: 100%; margin: 0; opacity: 0;
  cursor: ew-resize; }
.slider:focus-within { outline: 2px solid Highlight; }
.steps li.wrong { color: var(--bad); font-weight: 600; }
.steps { columns: 28em; margin: 4px 0; padding-left: 3em; font: 13px/1.6 ui-monospace, monospace;
  overflow-wrap: anywhere; }
pre { background: var(--soft); padding: 10px; margin: 4px 0; overflow: auto; max-height: 24em; }
h3 { font-size: 14px; margin: 14px 0 2px; }
@media (max-width: 600px) { body { padding: 0 10px 32px; } .inside, .test > summary, .test > p { padding-inline: 10px; } }
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
    slider.style.setProperty('--at', `${event.target.value}%`);
  });
for (const picture of document.images)
  picture.addEventListener('load', () => {
    if (picture.naturalWidth < picture.clientWidth) picture.style.imageRendering = 'pixelated';
  });
filter();
</script>
)";
