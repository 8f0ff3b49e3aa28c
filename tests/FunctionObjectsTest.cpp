// Functions and their types are most of what a model holds, and a function that follows its own
// type has no record of its own. Nobody may notice: whatever a host creates in whatever order is
// compared with a plain list of what it passed.
#include "model/DataModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace Tessel::Norn::Brindle::Tests {
namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr ObjectId sGlobalNamespace = 1;
constexpr ObjectId sAbove32Bits = ObjectId{1} << 32U;

class FunctionObjectsTest : public testing::Test {
protected:
    /// What was passed for one object.
    struct Passed {
        ObjectKind kind = ObjectKind::Namespace;
        ObjectId scope = 0;
        ObjectId type = 0;
        std::string name;
        ObjectId unit = 0;
        std::vector<ObjectId> parameters;
    };

    /// The identifier that the next object will have.
    [[nodiscard]] ObjectId Next() const { return mPassed.size(); }

    ObjectId Type(ObjectId result, ObjectId scope, const std::vector<ObjectId>& parameters = {}) {
        mPassed.push_back({ObjectKind::FunctionType, scope, result, "", 0, parameters});
        return mModel.CreateFunctionType(result, parameters, scope);
    }
    ObjectId Function(const std::string& name, ObjectId type, ObjectId scope, ObjectId unit = 0) {
        mPassed.push_back({ObjectKind::Function, scope, type, name, unit, {}});
        return mModel.CreateFunction(name, type, scope, unit, false);
    }
    ObjectId Block(const std::string& name, ObjectId scope) {
        mPassed.push_back({ObjectKind::Block, scope, 0, name, 0, {}});
        return mModel.CreateBlockScope(name, scope);
    }

    [[nodiscard]] std::vector<ObjectId> In(ObjectId scope) const {
        std::vector<ObjectId> ids;
        mModel.ForEachIn(scope, [&](const ModelObject& object) { ids.push_back(object.id); });
        return ids;
    }

    void ExpectObjectsAsPassed() const {
        ASSERT_EQ(mModel.ObjectCount() + 1, mPassed.size());
        for (ObjectId id = 1; id < mPassed.size(); ++id) {
            const ModelObject object = mModel.Object(id);
            const Passed& passed = mPassed[id];
            ASSERT_EQ(object.kind, passed.kind) << id;
            ASSERT_EQ(object.scope, passed.scope) << id;
            ASSERT_EQ(object.type, passed.type) << id;
            ASSERT_EQ(object.name, passed.name) << id;
            ASSERT_EQ(object.compileUnit, passed.unit) << id;
            ASSERT_THAT(mModel.Parameters(id), ElementsAreArray(passed.parameters)) << id;
        }
    }

    void ExpectScopesAsPassed() const {
        std::vector<std::vector<ObjectId>> inside(mPassed.size());
        for (ObjectId id = 1; id < mPassed.size(); ++id) {
            if (mPassed[id].scope != 0 && mPassed[id].scope < id) {
                inside[mPassed[id].scope].push_back(id);
            } else {
                ASSERT_EQ(mModel.NextIn(id), 0U) << id;
            }
        }
        for (ObjectId id = 1; id < mPassed.size(); ++id) {
            ASSERT_EQ(In(id), inside[id]) << id;
        }
    }

    /// The Get operations find the first object of each key.
    void ExpectKeysAsPassed() {
        for (ObjectId id = 2; id < mPassed.size(); ++id) {
            const Passed& passed = mPassed[id];
            if (passed.kind == ObjectKind::Function) {
                ASSERT_EQ(mModel.GetFunction(passed.name, passed.type, passed.scope), FirstAs(id));
            } else if (passed.kind == ObjectKind::FunctionType) {
                ASSERT_EQ(mModel.GetFunctionType(passed.type, passed.parameters, passed.scope),
                          FirstAs(id));
            }
        }
    }

    void ExpectAllAsPassed() {
        ExpectObjectsAsPassed();
        ExpectScopesAsPassed();
        ExpectKeysAsPassed();
    }

    DataModel::Model mModel;
    /// By identifier; the global namespace exists from the start.
    std::vector<Passed> mPassed{{}, {}};

private:
    [[nodiscard]] ObjectId FirstAs(ObjectId id) const {
        const Passed& wanted = mPassed[id];
        ObjectId first = 1;
        while (mPassed[first].kind != wanted.kind || mPassed[first].scope != wanted.scope ||
               mPassed[first].type != wanted.type || mPassed[first].name != wanted.name ||
               mPassed[first].parameters != wanted.parameters) {
            ++first;
        }
        return first;
    }
};

TEST_F(FunctionObjectsTest, TypesThatTellMoreThanTheirResult) {
    const ObjectId scope = Block("scope", sGlobalNamespace);
    Function("parameters", Type(7, scope, {7, 8}), scope);
    Function("elsewhere", Type(7, sGlobalNamespace), scope);
    Function("nowhere", Type(7, 0), 0);
    Function("in its type", Type(7, sGlobalNamespace), Next() - 1);
    Function("its type in itself", Type(7, Next()), Next() - 1);
    Function("both in the function", Type(7, Next() + 1), Next());
    Function("both in what comes later", Type(7, Next() + 2), Next() + 1);
    Block("later", scope);
    ExpectAllAsPassed();
}

TEST_F(FunctionObjectsTest, NumbersAbove32Bits) {
    Function("unit", Type(7, sGlobalNamespace), sGlobalNamespace, sAbove32Bits + 5);
    Function("result", Type(sAbove32Bits + 7, sGlobalNamespace), sGlobalNamespace, 5);
    const ObjectId type = Type(7, sGlobalNamespace);
    Function("type", 2 * sAbove32Bits + type, sGlobalNamespace);
    Function("scope", Type(7, sGlobalNamespace), 3 * sAbove32Bits + sGlobalNamespace);
    Function("both scopes", Type(7, sAbove32Bits + sGlobalNamespace),
             sAbove32Bits + sGlobalNamespace);
    ExpectAllAsPassed();
}

TEST_F(FunctionObjectsTest, FunctionAndTypeAreScopesOfTheirOwn) {
    const ObjectId outer = Type(7, sGlobalNamespace);
    const ObjectId function = Function("f", outer, sGlobalNamespace, 5);
    const ObjectId ofFunction = Block("of the function", function);
    const ObjectId ofType = Block("of the type", outer);
    const ObjectId inner = Type(0, outer);
    const ObjectId innerFunction = Function("g", inner, outer);
    const ObjectId last = Block("last", function);
    ExpectAllAsPassed();
    EXPECT_THAT(In(outer), ElementsAre(ofType, inner, innerFunction));
    EXPECT_THAT(In(function), ElementsAre(ofFunction, last));
    EXPECT_EQ(mModel.QualifiedName(ofFunction), "f::of the function");
    EXPECT_EQ(mModel.QualifiedName(ofType), "of the type");
}

TEST_F(FunctionObjectsTest, AnyOrderOfCalls) {
    std::mt19937 random(1);
    const auto upTo = [&](ObjectId largest) { return random() % (largest + 1); };
    for (int step = 0; step < 3000; ++step) {
        const ObjectId scope = upTo(3) != 0 ? upTo(4) : upTo(Next() + 2);
        const ObjectId type = upTo(3) != 0 ? Next() - 1 : upTo(Next() + 2);
        const std::string name(1, static_cast<char>('a' + upTo(3)));
        if (step % 500 == 0) {
            ExpectKeysAsPassed();
        }
        switch (upTo(5)) {
        case 0:
            Block(name, scope);
            break;
        case 1:
            Type(upTo(3), scope, std::vector<ObjectId>(upTo(2), 7));
            break;
        case 2:
            Function(name, type, scope, upTo(9));
            break;
        default:
            Function(name, Type(upTo(3), scope), scope, upTo(9));
            break;
        }
    }
    ExpectAllAsPassed();
}

TEST_F(FunctionObjectsTest, MoreThanOnePieceOfRecords) {
    ObjectId scope = sGlobalNamespace;
    for (int step = 0; step < 100'000; ++step) {
        scope = step % 1000 == 0 ? Block("block", scope) : scope;
        Type(ObjectId(step), scope);
        Function("f", Next() - 1, scope, sGlobalNamespace);
        Type(ObjectId(step), sGlobalNamespace, {7});
    }
    ExpectObjectsAsPassed();
    ExpectScopesAsPassed();
}

} // namespace
} // namespace Tessel::Norn::Brindle::Tests
