// Widget kinds by the `type` that pages call them.
#pragma once

#include "engine/pagefile.h"

struct Frame;
struct Widget;

using WidgetCreator = Widget* (*)(Frame* frame, Widget* parent, PageObject record);

void widgetTypeRegister(const char* name, WidgetCreator creator);  // a later one of the same name wins

// A widget of the kind that the record's `type` names. An absent or unknown type makes a plain widget. Null on failure.
Widget* widgetFromRecord(Frame* frame, Widget* parent, PageObject record);

void widgetTypesRegisterAll();
void widgetTypesReset();
