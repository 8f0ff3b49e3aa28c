// The settings of the demangler, for sources that include them from beside it.
#pragma once

#include "../core/VDemanglingOptions.h"
