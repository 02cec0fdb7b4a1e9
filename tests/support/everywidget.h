// A page that has what pages can have, for tests that drive pages at random or let things fail.
#pragma once

#include <string>

#include "support/blockfont.h"
#include "support/pagefixture.h"

// Every kind of widget, and what pages are made of: styles, pictures, scripts of all sorts, a page in the page.
inline constexpr char kEveryWidget[] = R"(flags: 8bit
page:
  width: 720
  height: 480
  type: group
  bgColor: 7
  colorTable: colors.clut
  start: row
  scripts: [tools.bob]
  textStyles:
    - {name: plain, font: blocks.ttf, size: 10, color: 9, antialias: true, gridfit: true}
    - {name: bright, font: blocks.ttf, size: 12, color: 5, bgColor: 3, underline: true, encoding: utf8}
  onLoad: |
    style = new TextStyle(textStyles.plain);
    textStyles.bright.CacheGlyphs("ab ba");
    table = new StringTable("texts.tbl");
    table.String(1);
    widgets.words.value = twice("ab");
    widgets.words.highlightStyle = textStyles.bright;
    target = new EventTarget();
    target.OnEvent(0x70001, function (e) { KOVA.heard = e.data; return true; });
    widgets.bar.ObserveEvent(0x70002, function (e) { return nil; });
    tick = new Timer(function () { widgets.count.value = widgets.count.value + 1; }, 3, true);
    new Timer(function () { widgets.inside.LoadPage("inner.kpg"); }, 5);
  onUnload: 'tick.Clear(); KOVA.last = widgets.words.value; target = nil;'
  children:
    - {type: select, name: row, x: 20, y: 20, width: 300, height: 30, textStyle: plain, highlightTextStyle: bright,
       showAll: true, choices: "|aa|bb|ab", navigate: leftRight, down: words, onChange: 'KOVA.chosen = widgets.row.value;'}
    - {type: text, name: words, x: 20, y: 60, width: 90, height: 60, textStyle: plain, multiline: true, value: "ab ba aa",
       up: row, down: pin, onClick: 'widgets.row.AddElement("ba");', onFocus: 'widgets.art.src = "cloth.gif";'}
    - {type: text, name: pin, x: 20, y: 130, width: 90, height: 20, textStyle: plain, maxLength: 4, echoChar: "*",
       highlightFrame: true, up: words, down: bar}
    - {type: slider, name: bar, x: 20, y: 160, width: 90, height: 20, value: 40, fgColor: 6, bgColor: 2, navigate: leftRight, immediate: true,
       onChange: 'widgets.count.value = widgets.bar.value;', up: pin, down: lines}
    - {type: number, name: count, x: 20, y: 190, width: 90, height: 20, textStyle: plain, highlightTextStyle: bright,
       size: 3, master: bar}
    - type: textContainer
      name: lines
      x: 20
      y: 220
      width: 200
      height: 40
      selectTextStyle: bright
      selectedLine: 1
      up: bar
      children: [{x: 0, y: 12, style: plain, content: ab}, {x: 0, y: 24, style: plain, content: ba}]
    - {type: image, name: art, x: 300, y: 100, width: 16, height: 16, src: art.kpx, highlightSrc: cloth.gif, timeout: 8}
    - {type: frame, name: inside, x: 400, y: 200, width: 100, height: 100, src: inner.kpg}
    - {type: group, x: 300, y: 300, width: 12, height: 6, background: cloth.gif, tileBackground: true, hidden: content,
       children: [{x: 1, y: 1, width: 5, height: 5, bgColor: 12}]}
)";

inline constexpr char kInnerPage[] = R"(flags: 8bit
page: {type: group, width: 90, height: 90, bgColor: 200, onLoad: 'mine = new Object();',
  children: [{type: text, name: own, width: 50, height: 20, value: in}]}
)";

// The page is every.kpg, and inner.kpg the one in it.
class EveryWidgetTest : public PageTest {
 protected:
  EveryWidgetTest() {
    const std::vector<uint8_t> font = BlockFontFile();
    writeText("blocks.ttf", {font.begin(), font.end()});
    std::string picture("\0\0\0\20\0\20\0\1\0\0\0\0", 12);
    for (int i = 0; i < 256; ++i) picture += char(i);
    writeText("art.kpx", picture);
    writeText("cloth.gif", std::string("GIF89a\1\0\1\0\x80\0\0\xFF\xFF\xFF\0\0\0,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35));
    std::string colors(1, 0);
    for (int i = 0; i < 256; ++i) colors += {char(i), char(128), char(128), 0};
    writeText("colors.clut", colors);
    writeText("tools.bob", "define twice(x) { return x + x; }\n");
    writeText("texts.tbl",
              std::string(20, 0) + std::string("\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\2\0\0\0\x2Cok", 26));
    build("inner.kpg", kInnerPage);
    build("every.kpg", kEveryWidget);
  }
};
