#include "VariableMatching.h"

#include "SharedNames.h"

#include "model/LayoutFingerprints.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;
using Model = DataModel::Model;

std::string_view UnitName(const Model& model, ObjectId global) {
    return model.Object(model.CompileUnitOf(global)).name;
}

std::string_view WithoutFolders(std::string_view unit) {
    const std::size_t folders = unit.find_last_of("/\\");
    return folders == std::string_view::npos ? unit : unit.substr(folders + 1);
}

enum class UnitPart { WholeName, FileName };

/// One of the two models.
class Side {
public:
    explicit Side(const Model& model)
        : mModel(model)
        , mSharedNames(model)
        , mFingerprints(model) {}

    [[nodiscard]] std::vector<ObjectId> Globals() const {
        std::vector<ObjectId> globals;
        mModel.ForEach(ObjectKind::Global,
                       [&globals](const ModelObject& global) { globals.push_back(global.id); });
        return globals;
    }

    /// Name and unit, separated by a character that no name contains. Numbers of variables that
    /// share a name say nothing.
    [[nodiscard]] std::string KeyOf(ObjectId global, UnitPart part) const {
        std::string name = mModel.QualifiedName(global);
        if (std::string plain = mSharedNames.WithoutNumber(global, name); !plain.empty()) {
            name = std::move(plain);
        }
        const std::string_view unit = UnitName(mModel, global);
        return name.append(1, '\0').append(part == UnitPart::WholeName ? unit
                                                                       : WithoutFolders(unit));
    }

    /// What the sharers of a name are told apart by, the more the lower the level.
    [[nodiscard]] std::string SignatureOf(ObjectId global, int level) {
        const ModelObject variable = mModel.Object(global);
        std::string signature = mModel.TypeText(variable.type).append(1, '\0');
        if (level <= 1) {
            signature.append(std::to_string(mFingerprints.Of(variable.type))).append(1, '\0');
        }
        const std::uint64_t size = mModel.SizeOf(global);
        if (level == 0 && size <= sMostBytes) {
            const std::vector<std::uint8_t> bytes = mModel.InitialBytes(variable.address, size);
            signature.append(bytes.begin(), bytes.end());
        }
        return signature;
    }

private:
    /// Initial values of larger variables aren't compared.
    static constexpr std::uint64_t sMostBytes = std::uint64_t{64} * 1024;

    const Model& mModel;
    SharedNames mSharedNames;
    DataModel::LayoutFingerprints mFingerprints;
};

constexpr int sSignatureLevels = 3;

/// The unmatched variables of one key.
struct Candidates {
    /// Positions among the pairs.
    std::vector<std::size_t> before;
    std::vector<ObjectId> after;
};

class Matcher {
public:
    Matcher(const Model& oldModel, const Model& newModel)
        : mOld(oldModel)
        , mNew(newModel)
        , mIsTaken(newModel.ObjectCount() + 1) {
        for (const ObjectId global : mOld.Globals()) {
            mMatching.pairs.push_back({global, 0});
        }
        mMatching.appeared = mNew.Globals();
    }

    VariableMatching Match() {
        MatchByKey(UnitPart::WholeName);
        MatchByKey(UnitPart::FileName);
        return std::move(mMatching);
    }

private:
    void MatchByKey(UnitPart part) {
        if (mMatching.appeared.empty()) {
            return;
        }
        std::unordered_map<std::string, Candidates> byKey;
        for (const ObjectId global : mMatching.appeared) {
            byKey[mNew.KeyOf(global, part)].after.push_back(global);
        }
        for (std::size_t position = 0; position < mMatching.pairs.size(); ++position) {
            const VariableMatching::Pair& pair = mMatching.pairs[position];
            const auto known =
                pair.newGlobal != 0 ? byKey.end() : byKey.find(mOld.KeyOf(pair.oldGlobal, part));
            if (known != byKey.end()) {
                known->second.before.push_back(position);
            }
        }
        for (auto& [key, candidates] : byKey) {
            MatchCandidates(candidates);
        }
        std::erase_if(mMatching.appeared, [this](ObjectId global) { return mIsTaken[global]; });
    }

    void MatchCandidates(Candidates& candidates) {
        const bool isSure = candidates.before.size() == 1 && candidates.after.size() == 1;
        for (int level = 0; level < sSignatureLevels && !isSure && !candidates.before.empty();
             ++level) {
            MatchUnique(candidates, level);
        }
        const std::size_t count = std::min(candidates.before.size(), candidates.after.size());
        for (std::size_t position = 0; position < count; ++position) {
            Take(candidates.before[position], candidates.after[position], !isSure);
        }
    }

    /// Matches what has a signature that nothing else of its side has.
    void MatchUnique(Candidates& candidates, int level) {
        std::unordered_map<std::string, Candidates> bySignature;
        for (const std::size_t position : candidates.before) {
            const ObjectId global = mMatching.pairs[position].oldGlobal;
            bySignature[mOld.SignatureOf(global, level)].before.push_back(position);
        }
        for (const ObjectId global : candidates.after) {
            bySignature[mNew.SignatureOf(global, level)].after.push_back(global);
        }
        for (const auto& [signature, alike] : bySignature) {
            if (alike.before.size() == 1 && alike.after.size() == 1) {
                Take(alike.before.front(), alike.after.front(), false);
            }
        }
        std::erase_if(candidates.before, [this](std::size_t position) {
            return mMatching.pairs[position].newGlobal != 0;
        });
        std::erase_if(candidates.after, [this](ObjectId global) { return mIsTaken[global]; });
    }

    void Take(std::size_t position, ObjectId newGlobal, bool isByOrder) {
        VariableMatching::Pair& pair = mMatching.pairs[position];
        pair.newGlobal = newGlobal;
        pair.isByOrder = isByOrder;
        mIsTaken[newGlobal] = true;
    }

    Side mOld;
    Side mNew;
    VariableMatching mMatching;
    /// By identifier of the new model.
    std::vector<bool> mIsTaken;
};

} // namespace

VariableMatching MatchVariables(const Model& oldModel, const Model& newModel) {
    return Matcher(oldModel, newModel).Match();
}

} // namespace Tessel::Norn::Brindle::Program
