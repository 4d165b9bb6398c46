#pragma once
// What a fallible call gives back: its value, or the reason it failed in words
// (with the library's or the system's own text attached) for the event log and
// the user. This is the one way a failure travels from one room to another; a
// flag that remembers a failure lives only where the station's behaviour needs
// one, and is set and read in the same room.

#include <string>
#include <system_error>
#include <utility>
#include <variant>

namespace ovd::platform {

// The reason of a failure. It converts into a failed Result of any type, so a
// routine says `return failure("…");` whatever it gives back on success.
struct Failure {
    std::string reason;
};

inline Failure failure(std::string reason) { return Failure{std::move(reason)}; }

// A failure of a system call: what was being done, then the system's own text
// ("Can't open /x/y: No such file or directory").
inline Failure systemFailure(const std::string& what, int error) {
    return Failure{what + ": " + std::system_category().message(error)};
}

template <typename T>
class [[nodiscard]] Result {
  public:
    // NOLINTNEXTLINE(google-explicit-constructor): a value is a success.
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    // NOLINTNEXTLINE(google-explicit-constructor): a Failure is a failed result.
    Result(Failure failed) : state_(std::in_place_index<1>, std::move(failed.reason)) {}

    [[nodiscard]] bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }

    // The value; only after ok() said so.
    [[nodiscard]] T& value() & { return std::get<0>(state_); }
    [[nodiscard]] const T& value() const& { return std::get<0>(state_); }
    [[nodiscard]] T&& value() && { return std::get<0>(std::move(state_)); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }

    // The value, or the fallback when the call failed.
    [[nodiscard]] T valueOr(T fallback) const& { return ok() ? value() : std::move(fallback); }

    // Why the call failed; empty on success.
    [[nodiscard]] const std::string& error() const {
        static const std::string none;
        return ok() ? none : std::get<1>(state_);
    }
    // The failure itself, to hand on unchanged to the caller's caller.
    [[nodiscard]] Failure failed() const { return Failure{error()}; }

  private:
    std::variant<T, std::string> state_;
};

// A call that gives nothing back but may fail.
template <>
class [[nodiscard]] Result<void> {
  public:
    Result() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): a Failure is a failed result.
    Result(Failure failed) : ok_(false), error_(std::move(failed.reason)) {}
    static Result success() { return Result(); }

    [[nodiscard]] bool ok() const { return ok_; }
    explicit operator bool() const { return ok_; }
    [[nodiscard]] const std::string& error() const { return error_; }
    [[nodiscard]] Failure failed() const { return Failure{error_}; }

  private:
    bool ok_ = true;
    std::string error_;
};

}  // namespace ovd::platform
