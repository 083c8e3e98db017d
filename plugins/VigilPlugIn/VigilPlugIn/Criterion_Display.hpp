#pragma once

#include "platform/InterfaceOwner.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

// The nodes that the editor shows as something else than their name.

namespace vigil {

/// A line between groups of a menu.
class SeparatorCriterion : public Criterion {
  public:
    template <class T = SeparatorCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent,
                                                 const std::optional<std::string>& name = std::nullopt,
                                                 const CriterionList& children = {}) {
        return build<T>(agent, name, children);
    }
    std::string className() const override;
    DisplayValue displayValue() override;
};

/// A text field, as the interface file "TextField" describes it. Absent where the file is missing or holds
/// none.
class TextFieldCriterion : public Criterion {
  public:
    template <class T = TextFieldCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent,
                                                 const std::optional<std::string>& name = std::nullopt,
                                                 const CriterionList& children = {}) {
        return build<T>(agent, name, children);
    }
    std::string className() const override;
    DisplayValue displayValue() override;
};

/// A pop-up button, as the interface file "PopUpButton" describes it, with the module's sounds added.
class PopUpCriterion : public Criterion, public InterfaceOwner {
  public:
    template <class T = PopUpCriterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent,
                                                 const std::optional<std::string>& name = std::nullopt,
                                                 const CriterionList& children = {}) {
        return build<T>(agent, name, children);
    }
    std::string className() const override;
    /// Every entry of the resource folder whose name contains ".wav" or ".mp3" becomes an item, in the
    /// folder's own order, behind the items that the interface file gives. The test is for a part of the
    /// name, in lower case: bell.wav.old is taken, Alarm.WAV is not.
    DisplayValue displayValue() override;
    /// The names of all entries of the module's resource folder, unsorted; nothing when it cannot be listed.
    std::optional<std::vector<std::string>> getArrayOfSounds() const;

    const InterfaceTable& interfaceTable() const override;
};

}  // namespace vigil
