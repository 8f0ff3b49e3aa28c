#include "ModelDocument.h"

#include "ImageDocument.h"
#include "JsonOutput.h"
#include "ReadSession.h"
#include "ResultOutput.h"

#include "core/HostText.h"
#include "host/ContainerDetection.h"
#include "model/DataModel.h"

#include <cstdint>
#include <string_view>

namespace Tessel::Norn::Brindle::Program {

namespace {

using DataModel::ModelObject;
using DataModel::ObjectId;
using DataModel::ObjectKind;

std::string_view KindName(ObjectKind kind) {
    switch (kind) {
    case ObjectKind::Namespace:
        return "namespace";
    case ObjectKind::Block:
        return "block";
    case ObjectKind::CompileUnit:
        return "compileUnit";
    case ObjectKind::Base:
        return "base";
    case ObjectKind::Unknown:
        return "unknown";
    case ObjectKind::Class:
        return "class";
    case ObjectKind::Struct:
        return "struct";
    case ObjectKind::Union:
        return "union";
    case ObjectKind::Member:
        return "member";
    case ObjectKind::UnionMember:
        return "unionMember";
    case ObjectKind::BitField:
        return "bitField";
    case ObjectKind::Array:
        return "array";
    case ObjectKind::Pointer:
        return "pointer";
    case ObjectKind::Enum:
        return "enum";
    case ObjectKind::Typedef:
        return "typedef";
    case ObjectKind::FunctionType:
        return "functionType";
    case ObjectKind::Function:
        return "function";
    case ObjectKind::Global:
        return "global";
    case ObjectKind::StaticMember:
        return "staticMember";
    case ObjectKind::OldBitField:
        return "oldBitField";
    case ObjectKind::Section:
        return "section";
    case ObjectKind::Segment:
        return "segment";
    }
    return {};
}

/// Writes objects of one model, each with the fields of its kind.
class ObjectWriter {
public:
    ObjectWriter(const DataModel::Model& model, JsonWriter& json)
        : mModel(model)
        , mJson(json) {}

    void Write(const ModelObject& object) {
        mJson.StartObject();
        WriteField(mJson, "id", object.id);
        WriteField(mJson, "kind", KindName(object.kind));
        WriteField(mJson, "scope", object.scope);
        WriteFields(object);
        mJson.EndObject();
    }

private:
    void WriteFields(const ModelObject& object) {
        switch (object.kind) {
        case ObjectKind::Namespace:
        case ObjectKind::Block:
        case ObjectKind::CompileUnit:
            return WriteField(mJson, "name", object.name);
        case ObjectKind::Base:
            WriteNumber("basicType", static_cast<std::int32_t>(object.basicType));
            return WriteField(mJson, "size", object.size);
        case ObjectKind::Unknown:
        case ObjectKind::Section:
            return WriteField(mJson, "size", object.size);
        case ObjectKind::Class:
        case ObjectKind::Struct:
        case ObjectKind::Union:
            return WriteClass(object);
        case ObjectKind::Member:
        case ObjectKind::UnionMember:
        case ObjectKind::BitField:
            return WriteMember(object);
        case ObjectKind::Array:
            return WriteArray(object);
        case ObjectKind::Pointer:
            WriteField(mJson, "type", object.type);
            return WriteField(mJson, "size", object.size);
        case ObjectKind::Enum:
            return WriteEnum(object);
        case ObjectKind::Typedef:
            return WriteNameAndType(object);
        case ObjectKind::FunctionType:
            return WriteFunctionType(object);
        case ObjectKind::Function:
            WriteNameAndType(object);
            return WriteField(mJson, "compileUnit", object.compileUnit);
        case ObjectKind::Global:
        case ObjectKind::StaticMember:
            WriteNameAndType(object);
            return WriteField(mJson, "address", object.address);
        case ObjectKind::OldBitField:
            WriteField(mJson, "type", object.type);
            return WriteBits(object);
        case ObjectKind::Segment:
            WriteField(mJson, "name", object.name);
            WriteField(mJson, "address", object.address);
            return WriteField(mJson, "size", object.size);
        }
    }

    void WriteClass(const ModelObject& object) {
        WriteField(mJson, "name", object.name);
        WriteField(mJson, "size", object.size);
        WriteField(mJson, "anonymous", object.anonymous);
        if (object.kind == ObjectKind::Union) {
            return;
        }
        WriteKey(mJson, "bases");
        mJson.StartArray();
        for (const DataModel::BaseClass& base : mModel.BaseClasses(object.id)) {
            mJson.StartObject();
            WriteField(mJson, "type", base.type);
            WriteNumber("offset", base.offset);
            mJson.EndObject();
        }
        mJson.EndArray();
    }

    void WriteMember(const ModelObject& object) {
        WriteNameAndType(object);
        WriteNumber("offset", object.offset);
        if (object.kind == ObjectKind::BitField) {
            WriteBits(object);
        }
    }

    void WriteArray(const ModelObject& object) {
        WriteField(mJson, "type", object.type);
        WriteKey(mJson, "dimensions");
        mJson.StartArray();
        for (const std::uint32_t dimension : mModel.Dimensions(object.id)) {
            mJson.Uint(dimension);
        }
        mJson.EndArray();
        WriteField(mJson, "size", object.size);
    }

    void WriteEnum(const ModelObject& object) {
        WriteNameAndType(object);
        WriteField(mJson, "anonymous", object.anonymous);
        WriteKey(mJson, "enumerators");
        mJson.StartArray();
        for (const DataModel::Enumerator& enumerator : mModel.Enumerators(object.id)) {
            mJson.StartObject();
            WriteNumber("value", enumerator.value);
            WriteField(mJson, "name", enumerator.name);
            mJson.EndObject();
        }
        mJson.EndArray();
    }

    void WriteFunctionType(const ModelObject& object) {
        WriteField(mJson, "type", object.type);
        WriteKey(mJson, "parameters");
        mJson.StartArray();
        for (const ObjectId parameter : mModel.Parameters(object.id)) {
            mJson.Uint64(parameter);
        }
        mJson.EndArray();
    }

    void WriteBits(const ModelObject& object) {
        WriteNumber("bitOffset", object.bitOffset);
        WriteField(mJson, "bitSize", object.bitSize);
    }

    void WriteNameAndType(const ModelObject& object) {
        WriteField(mJson, "name", object.name);
        WriteField(mJson, "type", object.type);
    }

    void WriteNumber(std::string_view key, std::int64_t number) {
        WriteKey(mJson, key);
        mJson.Int64(number);
    }

    const DataModel::Model& mModel;
    JsonWriter& mJson;
};

void WriteHead(const std::string& file, const ReadResult& result, JsonWriter& json) {
    WriteField(json, "file", Reader::DWARF::ToHostText(file));
    WriteField(json, "container", Reader::DWARF::ContainerName(result.container));
    WriteField(json, "ok", result.isOk);
    WriteKey(json, "error");
    if (result.isOk) {
        json.Null();
    } else {
        WriteText(json, result.error);
    }
}

} // namespace

void WriteModelDocument(const std::string& file, const ReadResult& result,
                        const DataModel::Model& model, ResultOutput& output) {
    JsonWriter json(output);
    json.StartObject();
    WriteHead(file, result, json);
    WriteField(json, "version", kJsonVersion);
    WriteImageField(json, "image", model.Image());
    WriteKey(json, "objects");
    json.StartArray();
    ObjectWriter objects(model, json);
    for (ObjectId id = 1; id <= model.ObjectCount(); ++id) {
        output.Put('\n');
        objects.Write(model.Object(id));
    }
    output.Put('\n');
    json.EndArray();
    json.EndObject();
    output.Put('\n');
}

} // namespace Tessel::Norn::Brindle::Program
