// All of the datatype helper in one header. It needs no reader, and no other part of the library.
#pragma once

#include "../datatype/IDataType.h"
#include "../datatype/MapEntryType1.h"
#include "../datatype/VDatatype.h"
#include "../datatype/VDatatypeNET.h"
#include "../datatype/VDatatypeWrapper.h"
