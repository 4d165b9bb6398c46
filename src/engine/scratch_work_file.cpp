#include "engine/scratch_work_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

#include "platform/files.h"

namespace ovd::engine {

platform::Result<std::shared_ptr<WorkFile>> scratchWorkFile(const std::string& folder,
                                                            const PcmFormat& format) {
    std::string pattern = platform::joinPath(folder, "ovd-scratch-XXXXXX");
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    // The unique name is claimed here; the work file then takes the name over.
    const int fd = ::mkstemp(name.data());
    if (fd < 0) return platform::systemFailure("can't make a scratch file in " + folder, errno);
    ::close(fd);
    auto created = WorkFile::create(name.data(), format);
    if (!created) {
        ::unlink(name.data());
        return created.failed();
    }
    (*created)->removeFromDisk();
    return std::move(*created);
}

}  // namespace ovd::engine
