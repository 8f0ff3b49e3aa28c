// The names in a model that are similar to one that it does not have. The commands that look for
// names end their messages with them.
#pragma once

#include <string>
#include <string_view>

namespace Tessel::Norn::Brindle::DataModel {
class Model;
}

namespace Tessel::Norn::Brindle::Program {

/// @name Each returns "; nearest names: a, b", or an empty text
/// @param wanted a name, or an expression, of which the head counts; patterns have no similar
///     names. With "::" in it whole qualified names are compared, else own names
/// @{
std::string NearVariables(const DataModel::Model& model, std::string_view wanted);
std::string NearTypes(const DataModel::Model& model, std::string_view wanted);
/// @}

/// The same for the members of the place of an expression.
/// @param resolved the part of an expression that resolves
/// @param rest the part after it; nothing is similar unless it begins with a point and a name
std::string NearMembers(const DataModel::Model& model, std::string_view resolved,
                        std::string_view rest);

} // namespace Tessel::Norn::Brindle::Program
