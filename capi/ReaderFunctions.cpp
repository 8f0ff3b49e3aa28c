// The functions of the C interface that take a reader.
#include "Calls.h"
#include "ModelState.h"
#include "ReadGate.h"
#include "ReaderState.h"
#include "TableDataModel.h"

#include "core/VElfResourceManager.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>

using namespace Tessel::Norn::Brindle;
using CInterface::GiveText;
using CInterface::Guarded;
using CInterface::Input;
using CInterface::ModelState;
using CInterface::ModelTable;
using CInterface::Outcome;
using CInterface::ReaderState;
using CInterface::ReaderTable;
using CInterface::ReadGate;
using CInterface::TakeInput;
using CInterface::TextTarget;

namespace {

/// Runs `work`, which takes the reader and returns an outcome, and keeps the outcome in the reader.
template <typename Work>
brindle_status ForReader(brindle_reader reader, Work&& work) {
    return Guarded([&]() -> brindle_status {
        const std::shared_ptr<ReaderState> state = ReaderTable::Instance().Find(reader);
        if (state == nullptr) {
            return BRINDLE_INVALID_HANDLE;
        }
        Outcome outcome;
        outcome.status = Guarded([&] {
            outcome = work(*state);
            return outcome.status;
        });
        const brindle_status status = outcome.status;
        state->Remember(std::move(outcome));
        return status;
    });
}

/// False if the read never began, so that there is no model to keep.
bool HasRead(brindle_status status) {
    constexpr std::array refusals = {BRINDLE_BUSY, BRINDLE_INVALID_ARGUMENT, BRINDLE_NOT_FOUND,
                                     BRINDLE_INVALID_VALUE};
    return std::ranges::find(refusals, status) == refusals.end();
}

/// Reads into a model of the library, whose handle the host gets if the read began.
Outcome ReadIntoModel(ReaderState& state, const Input& input, brindle_model* model) {
    const auto modelState = std::make_shared<ModelState>();
    // Before the read, so that nothing can fail after it.
    brindle_model handle = ModelTable::Instance().Add(modelState);
    Outcome outcome = state.Read(input, modelState->Model());
    if (HasRead(outcome.status)) {
        *model = handle;
    } else {
        ModelTable::Instance().Remove(handle);
    }
    return outcome;
}

brindle_input InputOf(const char* path, brindle_container container) {
    brindle_input input = {};
    input.struct_size = sizeof input;
    input.path = path;
    input.container = container;
    return input;
}

} // namespace

brindle_status brindle_reader_create(brindle_reader* reader) {
    if (reader == nullptr) {
        return BRINDLE_INVALID_ARGUMENT;
    }
    *reader = nullptr;
    return Guarded([&] {
        *reader = ReaderTable::Instance().Add(std::make_shared<ReaderState>());
        return BRINDLE_OK;
    });
}

brindle_status brindle_reader_destroy(brindle_reader reader) {
    return Guarded([&] {
        const bool isEnded = reader == nullptr || ReaderTable::Instance().Remove(reader) != nullptr;
        return isEnded ? BRINDLE_OK : BRINDLE_INVALID_HANDLE;
    });
}

brindle_status brindle_reader_last_status(brindle_reader reader) {
    return Guarded([&]() -> brindle_status {
        const std::shared_ptr<ReaderState> state = ReaderTable::Instance().Find(reader);
        return state == nullptr ? BRINDLE_INVALID_HANDLE : state->LastOutcome().status;
    });
}

brindle_status brindle_reader_error_text(brindle_reader reader, char* buffer, size_t capacity,
                                         size_t* length) {
    return Guarded([&]() -> brindle_status {
        const TextTarget target{buffer, capacity, length};
        GiveText({}, target);
        const std::shared_ptr<ReaderState> state = ReaderTable::Instance().Find(reader);
        if (state == nullptr) {
            return BRINDLE_INVALID_HANDLE;
        }
        const Outcome outcome = state->LastOutcome();
        const bool isTold = outcome.status == BRINDLE_OK || !outcome.text.empty();
        return GiveText(isTold ? outcome.text : brindle_status_text(outcome.status), target);
    });
}

brindle_status brindle_reader_set_language(brindle_reader reader, int32_t language) {
    return ForReader(reader, [&](ReaderState& /*state*/) -> Outcome {
        return {ReadGate::BetweenReads<brindle_status>(BRINDLE_BUSY, [&] {
            Reader::DWARF::VElfResourceManager::Instance().SetLanguage(language);
            return BRINDLE_OK;
        })};
    });
}

brindle_status brindle_reader_set_read_all_types(brindle_reader reader,
                                                 brindle_bool read_all_types) {
    return ForReader(reader, [&](ReaderState& state) -> Outcome {
        state.SetReadAllTypes(read_all_types != 0);
        return {};
    });
}

brindle_status brindle_reader_set_callbacks(brindle_reader reader,
                                            const brindle_callbacks* callbacks) {
    return ForReader(reader, [&](ReaderState& state) -> Outcome {
        brindle_callbacks known = {};
        if (callbacks != nullptr && !CInterface::TakeStructure(callbacks, known)) {
            return {BRINDLE_INVALID_ARGUMENT, "the callbacks have no size"};
        }
        state.SetCallbacks(known);
        return {};
    });
}

brindle_status brindle_reader_read(brindle_reader reader, const char* path,
                                   brindle_container container, brindle_model* model) {
    const brindle_input input = InputOf(path, container);
    return brindle_reader_read_input(reader, &input, model);
}

brindle_status brindle_reader_read_input(brindle_reader reader, const brindle_input* input,
                                         brindle_model* model) {
    if (model != nullptr) {
        *model = nullptr;
    }
    return ForReader(reader, [&](ReaderState& state) -> Outcome {
        if (model == nullptr) {
            return {BRINDLE_INVALID_ARGUMENT, "the place for the model is null"};
        }
        Input taken;
        Outcome outcome = TakeInput(input, taken);
        return outcome.status == BRINDLE_OK ? ReadIntoModel(state, taken, model) : outcome;
    });
}

brindle_status brindle_reader_deliver(brindle_reader reader, const char* path,
                                      brindle_container container, const brindle_factory* factory) {
    const brindle_input input = InputOf(path, container);
    return brindle_reader_deliver_input(reader, &input, factory);
}

brindle_status brindle_reader_deliver_input(brindle_reader reader, const brindle_input* input,
                                            const brindle_factory* factory) {
    return ForReader(reader, [&](ReaderState& state) -> Outcome {
        brindle_factory known = {};
        if (!CInterface::TakeStructure(factory, known)) {
            return {BRINDLE_INVALID_ARGUMENT, "the factory is null or has no size"};
        }
        Input taken;
        Outcome outcome = TakeInput(input, taken);
        if (outcome.status != BRINDLE_OK) {
            return outcome;
        }
        CInterface::TableDataModel model(known, state.IsCancelled());
        return state.Read(taken, model);
    });
}

brindle_status brindle_reader_remark_at(brindle_reader reader, size_t index, brindle_remark* remark,
                                        char* buffer, size_t capacity, size_t* length) {
    return Guarded([&]() -> brindle_status {
        const TextTarget target{buffer, capacity, length};
        GiveText({}, target);
        const std::shared_ptr<ReaderState> state = ReaderTable::Instance().Find(reader);
        const auto found = state != nullptr ? state->RemarkAt(index) : std::nullopt;
        brindle_remark known = {};
        if (found) {
            known.kind = static_cast<brindle_remark_kind>(found->kind);
            known.count = found->count;
            known.total = found->total;
        }
        if (remark != nullptr && !CInterface::GiveStructure(known, remark)) {
            return BRINDLE_INVALID_ARGUMENT;
        }
        if (!found) {
            return state == nullptr ? BRINDLE_INVALID_HANDLE : BRINDLE_NOT_FOUND;
        }
        return GiveText(found->text, target);
    });
}

brindle_status brindle_reader_cancel(brindle_reader reader) {
    return Guarded([&] {
        const std::shared_ptr<ReaderState> state = ReaderTable::Instance().Find(reader);
        if (state == nullptr) {
            return BRINDLE_INVALID_HANDLE;
        }
        state->Cancel();
        return BRINDLE_OK;
    });
}
