#include "conditions/Printer.hpp"

#include "platform/Number.hpp"

namespace vigil {
namespace {

void appendQuoted(std::string& to, std::string_view text) {
    to += '"';
    for (const char c : text) {
        switch (c) {
            case '\\':
                to += "\\\\";
                break;
            case '"':
                to += "\\\"";
                break;
            case '\n':
                to += "\\n";
                break;
            case '\r':
                to += "\\r";
                break;
            case '\t':
                to += "\\t";
                break;
            default:
                to += c;
        }
    }
    to += '"';
}

void appendComparison(std::string& to, const Comparison& comparison) {
    ((to += comparison.key) += '.') += memberText(comparison.member);
    ((to += ' ') += operatorText(comparison.op)) += ' ';
    if (const auto* number = std::get_if<double>(&comparison.literal)) {
        appendNumber(to, *number);
    } else if (const auto* text = std::get_if<std::string>(&comparison.literal)) {
        appendQuoted(to, *text);
    } else {
        to += "CAST(";
        appendNumber(to, std::get<Date>(comparison.literal).secondsSinceReference());
        to += ", \"NSDate\")";
    }
}

// The depth of a tree is bounded, so this is too.
void appendNode(std::string& to, const ConditionNode& node) {
    if (const Comparison* comparison = node.comparison()) {
        appendComparison(to, *comparison);
        return;
    }
    bool first = true;
    for (const ConditionNode& part : node.parts()) {
        if (!first) ((to += ' ') += connectiveText(node.connective())) += ' ';
        first = false;
        if (part.isCompound()) to += '(';
        appendNode(to, part);
        if (part.isCompound()) to += ')';
    }
}

}  // namespace

std::string printedCondition(const ConditionNode& tree) {
    std::string text;
    appendNode(text, tree);
    return text;
}

std::string quotedText(std::string_view text) {
    std::string quoted;
    appendQuoted(quoted, text);
    return quoted;
}

}  // namespace vigil
