// Network cards and media devices of NT 3.51 and 4.0, whose set-up library may know none of them.
#pragma once

#include <cstdint>

#include "util/record_array.h"

namespace hostscope {

// False also when the system does not say which it is.
bool IsNt351Or40();

// Append a record for each network card or MIDI driver that the registry names, and answer how many
// they were. A card's record is a NetCardRecord, a driver's a DeviceRecord.
std::int32_t ListNtNetworkCards(RecordArray& records);
std::int32_t ListNtMidiDrivers(RecordArray& records);

// Takes entries off the front of a list of MIDI drivers ("NAME:Active, NAME:Inactive, ") up to the
// next active one that is not the system's own (mmdrv.dll), and answers its name; null when there
// is none. Only an entry that a comma ends counts, and the next one begins two characters after
// that comma. Ends the names within the list with zeros.
const char* TakeActiveMidiDriver(char*& list);

}  // namespace hostscope
