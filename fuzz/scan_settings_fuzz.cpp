// Any bytes as FileScan.cfg: the read must not fail, and a record it takes must be
// written back as a record it takes again.

#include <cstddef>
#include <cstdint>
#include <string>

#include "housekeeping/scan_settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(reinterpret_cast<const char*>(data), size);
    ovd::housekeeping::ScanSettings settings;
    if (ovd::housekeeping::readScanRecord(content, settings)) return 0;
    (void)ovd::housekeeping::daysToKeep(settings.DeleteDays);
    ovd::housekeeping::ScanSettings again;
    if (ovd::housekeeping::readScanRecord(ovd::housekeeping::formatScanRecord(settings), again))
        __builtin_trap();
    return 0;
}
