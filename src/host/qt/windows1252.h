// Bytes of the console as characters of a text control, one for one.
#pragma once

#include <QChar>
#include <QString>
#include <string>
#include <string_view>

// Windows-1252; control characters show as their pictures (U+2400 on). CR LF becomes one line break.
QString textFromBytes(std::string_view bytes);

// The way back for a run of text without line breaks; characters that have no byte become '?'.
std::string bytesFromText(const QString& text);
