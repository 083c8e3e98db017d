#include "conditions/ConditionPredicate.hpp"

#include <utility>

#include "conditions/Limits.hpp"
#include "conditions/Parser.hpp"
#include "conditions/Printer.hpp"
#include "platform/KeyedCoder.hpp"

namespace vigil {
namespace {

constexpr std::string_view kTextKey = "text";

struct Read {
    ConditionNode tree;
    std::string printed;
};

Result<Read, SyntaxError> read(std::string_view text) {
    auto tree = parseCondition(text);
    if (!tree) return tree.error();
    std::string printed = printedCondition(tree.value());
    // Escapes, exponents and parentheses can make the printed form the longer one.
    if (printed.size() > kMaxTextBytes)
        return SyntaxError{
            0, text.size(), "one of " + std::to_string(printed.size()) + " bytes",
            "a condition whose printed form has at most " + std::to_string(kMaxTextBytes) + " bytes",
            SyntaxProblem::TooLong};
    return Read{std::move(tree).value(), std::move(printed)};
}

}  // namespace

ConditionPredicate::ConditionPredicate() = default;
ConditionPredicate::~ConditionPredicate() = default;

Result<std::shared_ptr<ConditionPredicate>, SyntaxError> ConditionPredicate::predicateWithFormat(
    std::string_view text) {
    auto held = read(text);
    if (!held) return held.error();
    auto predicate = std::make_shared<ConditionPredicate>();
    predicate->adopt(std::move(held.value().tree), std::move(held.value().printed));
    return predicate;
}

Result<std::shared_ptr<ConditionPredicate>, SyntaxError> ConditionPredicate::predicateWithTree(
    ConditionNode tree) {
    const std::string text = printedCondition(tree);
    auto predicate = predicateWithFormat(text);
    if (predicate && !(predicate.value()->tree() == tree))
        return SyntaxError{0, text.size(), "one that reads back as another",
                           "a tree that reads back as itself"};
    return predicate;
}

void ConditionPredicate::adopt(ConditionNode tree, std::string printed) {
    m_tree = std::move(tree);
    m_printed = std::move(printed);
    m_bindings.reset(&*m_tree);
}

std::string ConditionPredicate::className() const {
    return "ConditionPredicate";
}

std::string ConditionPredicate::description() const {
    return m_printed;
}

bool ConditionPredicate::isEqual(const Object* other) const {
    const auto* condition = dynamic_cast<const ConditionPredicate*>(other);
    return condition && condition->m_tree == m_tree;
}

bool ConditionPredicate::initWithCoder(KeyedDecoder& coder) {
    const auto text = coder.decodeText(kTextKey);
    if (!text) {
        // An entry of another kind has been refused already.
        if (!coder.contains(kTextKey)) coder.refuse(kTextKey, "expected the text of a condition");
        return false;
    }
    auto held = read(*text);
    if (!held) {
        coder.refuse(kTextKey, "not a condition: " + held.error().message() + " at byte " +
                                   std::to_string(held.error().offset));
        return false;
    }
    adopt(std::move(held.value().tree), std::move(held.value().printed));
    return true;
}

void ConditionPredicate::encodeWithCoder(KeyedEncoder& coder) const {
    if (m_tree) coder.encodeText(kTextKey, m_printed);
}

}  // namespace vigil
