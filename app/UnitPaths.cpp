#include "UnitPaths.h"

#include <cstddef>

namespace Tessel::Norn::Brindle::Program {

using Result = DataModel::Model::PathResult;

std::vector<Result> ResolveUnitPaths(const DataModel::Model& model, std::string_view path) {
    constexpr std::string_view separator = "::";
    std::vector<Result> results = model.ResolvePaths(path);
    const std::size_t end = path.find(separator);
    if (end == std::string_view::npos || results.front().found) {
        return results;
    }
    const std::size_t lead = end + separator.size();
    std::vector<Result> ofUnit;
    for (Result& result : model.ResolvePaths(path.substr(lead))) {
        const DataModel::ObjectId unit = model.CompileUnitOf(result.place.global);
        if (result.found && model.Object(unit).name == path.substr(0, end)) {
            result.headLength += lead;
            result.resolvedLength += lead;
            ofUnit.push_back(result);
        }
    }
    return ofUnit.empty() ? results : ofUnit;
}

} // namespace Tessel::Norn::Brindle::Program
