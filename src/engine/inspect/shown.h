// What a widget shows at the moment, by the rules of its kind.
#pragma once

#include <string>

#include "engine/inspect/walk.h"
#include "engine/text/textstyle.h"

// The style that its text is drawn in now; null for none. Of a text container, that of the selected or first line.
const TextStyle* styleShown(const Widget* widget);
// The name that the style has on the widget's page; empty for none.
std::string styleName(const Widget* widget, const TextStyle* style);
// The attribute that names it in the present state; null where there is none.
StringAttribute styleAttributeShown(const Widget* widget);

// The nearest of it and the widgets around it whose background shows: what is under the content. Null for the screen's
// transparent colour.
const Widget* backgroundOf(const Widget* widget);
bool showsBackground(const Widget* widget);

std::string textShown(const Widget* widget);
std::string pictureShown(const Widget* widget);  // empty for none
FontState fontStateOf(const FontEntry* font);    // null: missing
