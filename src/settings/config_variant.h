#pragma once
// A setting whose kind is whatever it last held: nothing, text, a number or a
// yes/no. The settings record keeps a handful of these; each is written in the
// form of the value it holds at that moment.

#include <optional>
#include <string>
#include <variant>

namespace ovd::settings {

class ConfigVariant {
  public:
    ConfigVariant() = default;
    ConfigVariant(std::string text) : value_(std::move(text)) {}        // NOLINT: held like a value
    ConfigVariant(const char* text) : value_(std::string(text)) {}      // NOLINT
    ConfigVariant(double number) : value_(number) {}                    // NOLINT
    ConfigVariant(int number) : value_(static_cast<double>(number)) {}  // NOLINT
    ConfigVariant(bool flag) : value_(flag) {}                          // NOLINT

    [[nodiscard]] bool isEmpty() const { return std::holds_alternative<std::monostate>(value_); }
    [[nodiscard]] bool isText() const { return std::holds_alternative<std::string>(value_); }
    [[nodiscard]] bool isNumber() const { return std::holds_alternative<double>(value_); }
    [[nodiscard]] bool isBool() const { return std::holds_alternative<bool>(value_); }

    // The value seen as text: "" for nothing, "True"/"False", numbers without a
    // needless decimal point.
    [[nodiscard]] std::string toText() const;
    // The value seen as a number: text that reads as one, true as -1; otherwise nothing.
    [[nodiscard]] std::optional<double> toNumber() const;
    // Yes/no: a flag as it is, a number when not 0, "True"/"False" text; otherwise false.
    [[nodiscard]] bool toBool() const;
    // Nothing, or the empty text: the two ways a setting can be "not set".
    [[nodiscard]] bool isBlank() const { return isEmpty() || (isText() && toText().empty()); }

    bool operator==(const ConfigVariant& other) const = default;

  private:
    std::variant<std::monostate, std::string, double, bool> value_;
};

// A number as the record writes it: plain decimal, a point only when needed.
std::string formatNumber(double number);

}  // namespace ovd::settings
