#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "conditions/ConditionNode.hpp"
#include "conditions/editor/PredicateEditorRowTemplate.hpp"

namespace vigil {

/// "is", "is not", "is less than", …: what people choose from instead of "==", "!=", "<".
VIGIL_KIT std::string_view operatorTitle(ComparisonOperator op);
/// "all of these", "any of these"
VIGIL_KIT std::string_view connectiveTitle(Connective connective);

/// What an editor's templates offer, taken down when the editor gets them. Only what the language can say is
/// offered: an item whose key path is none, or has a member that does not fit the template's type, is left
/// out.
class PredicateEditorMenu {
  public:
    using Templates = std::vector<std::shared_ptr<PredicateEditorRowTemplate>>;

    struct Property {
        std::string title;
        std::string key;
        ComparisonMember member;
    };

    PredicateEditorMenu() = default;
    explicit PredicateEditorMenu(const Templates& templates);

    /// Of all templates, in their order.
    const std::vector<Property>& properties() const { return m_properties; }
    /// The place of what the comparison looks at, or nothing when it is not offered.
    std::optional<std::size_t> propertyOf(const Comparison& comparison) const;
    /// What is offered for that member, whichever the reading.
    const std::vector<ComparisonOperator>& operatorsOf(ComparisonMember member) const;
    const std::vector<Connective>& connectives() const { return m_connectives; }

  private:
    void addCompound(const PredicateEditorRowTemplate& from);
    void addComparison(const PredicateEditorRowTemplate& from);

    std::vector<Property> m_properties;
    std::unordered_map<std::string, std::size_t> m_places;  // by key path; of two the first
    std::vector<ComparisonOperator> m_operators[3];         // by member
    std::vector<Connective> m_connectives;
};

}  // namespace vigil
