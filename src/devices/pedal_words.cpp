#include "devices/pedal_events.h"

// The pedal words live in the header; this unit keeps the library non-empty until
// the device readers join it.
namespace ovd::devices {}
