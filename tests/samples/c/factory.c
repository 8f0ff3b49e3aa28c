/* Data of the factory. This unit is built without debug information. */
#include "types.h"

uint32_t factory_settings[8] = {0x46414354};
uint8_t factory_revision = 3;
static uint16_t factory_checksum = 0x1234;
uint16_t* factory_checksum_place = &factory_checksum;
