// Short names for tests of the C interface.
#pragma once

#include <brindle/brindle.h>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {

template <typename Structure>
Structure Sized() {
    Structure structure = {};
    structure.struct_size = sizeof structure;
    return structure;
}

inline std::string_view View(const brindle_text& text) {
    return {text.data, text.size};
}

/// A reader for one test.
class CReader {
public:
    CReader() { brindle_reader_create(&mHandle); }
    ~CReader() { brindle_reader_destroy(mHandle); }
    CReader(const CReader&) = delete;
    CReader& operator=(const CReader&) = delete;
    CReader(CReader&&) = delete;
    CReader& operator=(CReader&&) = delete;

    // NOLINTNEXTLINE(google-explicit-constructor,hicpp-explicit-conversions)
    operator brindle_reader() const { return mHandle; }

    [[nodiscard]] std::string ErrorText() const {
        std::string text(1024, '\0');
        std::size_t length = 0;
        brindle_reader_error_text(mHandle, text.data(), text.size(), &length);
        text.resize(length);
        return text;
    }

private:
    brindle_reader mHandle = nullptr;
};

/// A model that was read, and the status of the read.
class CModel {
public:
    CModel() = default;
    CModel(brindle_reader reader, const std::string& path) {
        mStatus = brindle_reader_read(reader, path.c_str(), BRINDLE_CONTAINER_ELF, &mHandle);
    }
    ~CModel() { brindle_model_destroy(mHandle); }
    CModel(const CModel&) = delete;
    CModel& operator=(const CModel&) = delete;
    CModel(CModel&&) = delete;
    CModel& operator=(CModel&&) = delete;

    // NOLINTNEXTLINE(google-explicit-constructor,hicpp-explicit-conversions)
    operator brindle_model() const { return mHandle; }

    [[nodiscard]] brindle_status Status() const { return mStatus; }

    [[nodiscard]] std::uint64_t ObjectCount() const {
        std::uint64_t count = 0;
        brindle_model_object_count(mHandle, &count);
        return count;
    }

    [[nodiscard]] std::string QualifiedName(brindle_id id) const {
        std::string text(256, '\0');
        std::size_t length = 0;
        brindle_model_qualified_name(mHandle, id, text.data(), text.size(), &length);
        text.resize(length);
        return text;
    }

    [[nodiscard]] std::vector<std::string> Variables() const {
        std::vector<std::string> names;
        brindle_id id = 0;
        while (brindle_model_next_of_kind(mHandle, BRINDLE_KIND_GLOBAL, id, &id) == BRINDLE_OK) {
            names.push_back(QualifiedName(id));
        }
        return names;
    }

    [[nodiscard]] brindle_id Find(const char* qualifiedName,
                                  brindle_kind kind = BRINDLE_KIND_ANY) const {
        brindle_id found = 0;
        brindle_model_find(mHandle, qualifiedName, kind, 0, &found);
        return found;
    }

private:
    brindle_model mHandle = nullptr;
    brindle_status mStatus = BRINDLE_OK;
};

} // namespace Tessel::Norn::Brindle::Tests
