// Descriptions in memory: tests of the A2L commands write their files as texts.
#pragma once

#include "a2l/Document.h"
#include "a2l/Parser.h"
#include "a2l/Source.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace Tessel::Norn::Brindle::Tests {

/// A description and the files that it includes, which are in no folder.
struct A2lFiles {
    explicit A2lFiles(std::string main, std::map<std::string, std::string> included = {})
        : mFiles(std::move(included))
        , mSources([this](const std::string& path) {
            // The keys are written with the separator that every system knows.
            const auto file = mFiles.find(std::filesystem::path(path).generic_string());
            return file == mFiles.end() ? std::nullopt : std::optional(file->second);
        }) {
        mFiles.emplace("main.a2l", std::move(main));
    }

    Program::A2l::Document Parse(const Program::A2l::ParseChoices& choices = {}) {
        return Program::A2l::Parse(mSources, mSources.Open("main.a2l"), choices);
    }

    std::map<std::string, std::string> mFiles;
    Program::A2l::SourceSet mSources;
};

/// A complete module with this content.
inline std::string InModule(const std::string& content) {
    return "ASAP2_VERSION 1 60\n/begin PROJECT p \"\"\n/begin MODULE m \"\"\n" + content +
           "\n/end MODULE\n/end PROJECT\n";
}

} // namespace Tessel::Norn::Brindle::Tests
