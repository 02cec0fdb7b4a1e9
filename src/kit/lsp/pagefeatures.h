// What an editor asks of a page source, or of a file that page sources include, in the protocol's own values.
//
// Each takes the full name of the file, and a place as a byte of its text. What has no answer is null, or an empty
// list.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "kit/lsp/sourceviews.h"

nlohmann::json completePage(SourceViews& views, const std::string& path, size_t offset);
nlohmann::json hoverPage(SourceViews& views, const std::string& path, size_t offset);

// -- names, and files where they are mentioned

nlohmann::json definitionInPage(SourceViews& views, const std::string& path, size_t offset);
nlohmann::json referencesInPage(SourceViews& views, const std::string& path, size_t offset, bool withDefinitions);
nlohmann::json prepareRenameInPage(SourceViews& views, const std::string& path, size_t offset);
// Throws LspError for what can't be called so.
nlohmann::json renameInPage(SourceViews& views, const std::string& path, size_t offset, const std::string& to);

// -- the source as a whole

nlohmann::json outlineOfPage(const PageView& view);
nlohmann::json foldsOfPage(const PageView& view);
nlohmann::json linksOfPage(SourceViews& views, const std::string& path);
nlohmann::json colorsOfPage(const PageView& view);
// For a colour of the protocol, with parts from 0 to 1.
nlohmann::json colorPresentations(const nlohmann::json& color, const TextRange& range);
