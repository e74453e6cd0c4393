#include "support/status_order.hpp"

#include <algorithm>
#include <cstring>

namespace lumcv::test {
namespace {

/// The bytes of all outputs, to be compared and put back.
class Snapshot
{
  public:
    explicit Snapshot(const std::vector<Output>& outputs) : outputs_(outputs), bytes_(taken()) {}

    bool holds() const
    {
        return taken() == bytes_;
    }

    void restore() const
    {
        std::size_t offset = 0;
        for (const Output& output : outputs_) {
            std::memcpy(output.begin, bytes_.data() + offset, output.size);
            offset += output.size;
        }
    }

  private:
    std::vector<unsigned char> taken() const
    {
        std::vector<unsigned char> bytes;
        for (const Output& output : outputs_) {
            bytes.insert(bytes.end(), output.begin, output.begin + output.size);
        }
        return bytes;
    }

    const std::vector<Output>& outputs_;
    std::vector<unsigned char> bytes_;
};

bool refuses(const ViolationRule& rule, const ViolationRule& other)
{
    return std::find(rule.notWith.begin(), rule.notWith.end(), other.name) != rule.notWith.end();
}

}  // namespace

ViolationRule::ViolationRule(std::string_view nameOfViolation, LumStatus expected)
    : name(nameOfViolation), status(expected)
{
}

ViolationRule::ViolationRule(std::string_view nameOfViolation, LumStatus expected,
                             const std::vector<std::string>& cannotJoin)
    : name(nameOfViolation), status(expected), notWith(cannotJoin)
{
}

ViolationRule::ViolationRule(const ViolationRule& other) = default;
ViolationRule& ViolationRule::operator=(const ViolationRule& other) = default;
ViolationRule::~ViolationRule() = default;

testing::AssertionResult statusOrder(const std::vector<const ViolationRule*>& rules, const std::vector<Output>& outputs,
                                     const ViolatingCall& call, LumStatus success)
{
    if (outputs.empty() || rules.empty()) {
        return testing::AssertionFailure() << "nothing to test: no outputs or no violations";
    }
    std::string complaints;
    const auto complain = [&](const std::string& what, const std::string& complaint) {
        complaints += "\n  " + what + ": " + complaint;
    };
    const Snapshot before(outputs);
    const auto tryCall = [&](std::initializer_list<std::size_t> places, LumStatus expected, const std::string& what) {
        const LumStatus status = call(places);
        if (status != expected) {
            complain(what, "got status " + std::to_string(status) + ", expected " + std::to_string(expected));
        }
        const bool written = !before.holds();
        if (written != (expected == success)) {
            complain(what, written ? "the call wrote through its outputs" : "the call wrote nothing");
        }
        before.restore();
    };

    tryCall({}, success, "the valid call");
    for (std::size_t later = 0; later < rules.size(); ++later) {
        const ViolationRule& rule = *rules[later];
        tryCall({later}, rule.status, rule.name);
        for (std::size_t earlier = 0; earlier < later; ++earlier) {
            const ViolationRule& first = *rules[earlier];
            if (!refuses(rule, first) && !refuses(first, rule)) {
                tryCall({later, earlier}, first.status, first.name + " + " + rule.name);
            }
        }
        for (const std::string& other : rule.notWith) {
            if (std::none_of(rules.begin(), rules.end(),
                             [&](const ViolationRule* known) { return known->name == other; })) {
                complain(rule.name, "there is no violation named '" + other + "'");
            }
        }
    }
    if (complaints.empty()) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "status order:" << complaints;
}

}  // namespace lumcv::test
