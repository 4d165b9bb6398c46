#pragma once
// What a fallible engine call gives back: success, or the reason in words (with
// the library's own text attached), for the event log and the user.

#include <string>
#include <utility>

namespace ovd::engine {

class [[nodiscard]] EngineResult {
public:
    static EngineResult success() { return EngineResult(); }
    static EngineResult failure(std::string reason) { return EngineResult(std::move(reason)); }

    [[nodiscard]] bool ok() const { return ok_; }
    explicit operator bool() const { return ok_; }
    [[nodiscard]] const std::string& error() const { return error_; }

private:
    EngineResult() = default;
    explicit EngineResult(std::string reason) : ok_(false), error_(std::move(reason)) {}
    bool ok_ = true;
    std::string error_;
};

}  // namespace ovd::engine
