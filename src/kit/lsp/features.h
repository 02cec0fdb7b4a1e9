// What an editor asks of page sources, of what they include, and of scripts, in the protocol's own values.
//
// Each takes the full name of the file, and a place as a byte of its text. What has no answer is null, or an empty
// list.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "kit/lsp/sourceviews.h"

// Of any source.
nlohmann::json completeAt(SourceViews& views, const std::string& path, size_t offset);
// In a script of that file as it is being written, which the place is at byte `inside` of.
nlohmann::json completeScript(SourceViews& views, const std::string& path, const ScriptView& script, size_t inside,
                              size_t offset);

// Of a page source, or of what page sources include.
nlohmann::json hoverPage(SourceViews& views, const std::string& path, size_t offset);

// Of a script file, or of a script in a page source: null where there is none.
nlohmann::json hoverScript(SourceViews& views, const std::string& path, size_t offset);
nlohmann::json signatureAt(SourceViews& views, const std::string& path, size_t offset);

// -- names, and files where they are mentioned

nlohmann::json definitionAt(SourceViews& views, const std::string& path, size_t offset);
nlohmann::json referencesAt(SourceViews& views, const std::string& path, size_t offset, bool withDefinitions);
nlohmann::json prepareRenameAt(SourceViews& views, const std::string& path, size_t offset);
// Throws LspError for what can't be called so.
nlohmann::json renameAt(SourceViews& views, const std::string& path, size_t offset, const std::string& to);

// -- the source as a whole

nlohmann::json outlineOfPage(const PageView& view);
nlohmann::json outlineOfScript(const ScriptView& script);
nlohmann::json foldsOfPage(const PageView& view);
nlohmann::json foldsOfScript(const ScriptView& script);
nlohmann::json linksIn(SourceViews& views, const std::string& path);  // files that are named
nlohmann::json colorsOfPage(const PageView& view);
// For a colour of the protocol, with parts from 0 to 1.
nlohmann::json colorPresentations(const nlohmann::json& color, const TextRange& range);

// Edits that bring the scripts of the file that have no errors into the one style.
nlohmann::json formatScripts(SourceViews& views, const std::string& path);

// Of all scripts in the file, as the protocol packs them; the legend says what the numbers mean.
nlohmann::json semanticTokensOf(SourceViews& views, const std::string& path);
nlohmann::json semanticLegend();

// The help of a name of the page, in Markdown; empty when nothing is known of it.
std::string aboutPageName(SourceViews& views, const std::string& path, NameKind kind, const std::string& name);
