#pragma once
// Hears through inotify when a file arrives in a staging folder or one of its
// sub-folders, so a letter is sent as soon as it is staged rather than at the next
// rescan. Sub-folders made later are watched from the moment they appear.

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/event_loop.h"
#include "platform/result.h"

namespace ovd::autosend {

class FolderWatch {
  public:
    // `changed` runs on the loop after something arrived or was written.
    FolderWatch(platform::EventLoop& loop, std::function<void()> changed);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // Watches the folder and every folder below it. A folder already watched is let be.
    platform::Result<void> watchTree(const std::string& folder);

  private:
    void onReadable();
    void watchOne(const std::string& folder);

    platform::EventLoop& loop_;
    std::function<void()> changed_;
    int fd_ = -1;
    std::optional<platform::EventLoop::Handle> watch_;
    std::map<int, std::string> folders_;  // by watch descriptor
};

}  // namespace ovd::autosend
