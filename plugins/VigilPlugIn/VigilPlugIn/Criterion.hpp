#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host_contract/QRVAgentPlugIn.hpp"
#include "platform/Controls.hpp"
#include "platform/Object.hpp"
#include "platform/Property.hpp"

// The tree behind the rule editor. A row of the editor is a path through it, from a root (an action) to a
// leaf; each node supplies what the editor shows for it. Main thread; the accessors of name, agent and
// children are safe from any thread.

namespace vigil {

class Criterion;
/// Shared: whoever holds the list of a node sees it emptied when the node goes.
using CriterionList = std::vector<std::shared_ptr<Criterion>>;
using DisplayValueList = std::vector<DisplayValue>;

class Criterion : public Object {
  public:
    using Agent = std::shared_ptr<QRVAgentPlugIn>;

    Criterion() = default;
    Criterion(const Criterion&) = delete;
    Criterion& operator=(const Criterion&) = delete;
    ~Criterion() override;

    /// A new node of class T; an absent or empty list leaves its children absent, another is copied into a
    /// list of its own. (Keyword form: criterionWithAgent:name:children:)
    template <class T = Criterion>
    static std::shared_ptr<T> criterionWithAgent(const Agent& agent,
                                                 const std::optional<std::string>& name = std::nullopt,
                                                 const CriterionList& children = {}) {
        return build<T>(agent, name, children);
    }
    void initWithAgent(const Agent& agent) { setAgent(agent); }

    /// The label in the editor, and the node's identity. Absent for separators, text fields and pop-ups.
    std::optional<std::string> name() const { return m_name.get(); }
    void setName(std::optional<std::string> name) { m_name.set(std::move(name)); }
    Agent agent() const { return m_agent.get(); }
    void setAgent(Agent agent) { m_agent.set(std::move(agent)); }
    /// The list itself; absent until the first `addChild`.
    std::shared_ptr<CriterionList> children() const { return m_children.get(); }
    void setChildren(std::shared_ptr<CriterionList> children) { m_children.set(std::move(children)); }
    /// Kept as a field; nothing calls it and it is not archived.
    std::function<void()> actionBlock() const { return m_actionBlock; }
    void setActionBlock(std::function<void()> block) { m_actionBlock = std::move(block); }

    void addChild(std::shared_ptr<Criterion> child);
    /// 0 while `children` is absent.
    std::int64_t numberOfChildren() const;
    /// Nothing while `children` is absent; otherwise an index outside the list throws std::out_of_range.
    std::shared_ptr<Criterion> childAtIndex(std::int64_t index) const;

    /// What the editor shows: the name, unless overridden. Controls are new ones on every call.
    virtual DisplayValue displayValue();
    /// Runs the node as an action; `displayValues` are those of its row, its own first. The base does
    /// nothing.
    virtual void performActionWithDisplayValues(const DisplayValueList& displayValues);

    std::string className() const override;
    /// Equal names, letter for letter, whatever the classes. A nameless node equals nothing, itself included.
    bool isEqual(const Object* other) const override;
    /// The default description, a blank, and the display value's own description.
    std::string description() const override;
    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;

  protected:
    /// Makes a T as `criterionWithAgent` does; every class's factory passes itself or the class that it is
    /// given.
    template <class T>
    static std::shared_ptr<T> build(const Agent& agent, const std::optional<std::string>& name,
                                    const CriterionList& children) {
        auto node = std::make_shared<T>();
        node->initWithAgent(agent);
        node->setName(name);
        for (const auto& child : children)
            node->addChild(child);
        return node;
    }

    /// The world of the agent, or the open one where there is no agent; nothing where there is neither.
    HostWorld* world() const;

  private:
    Property<std::optional<std::string>> m_name;
    Property<Agent> m_agent;
    Property<std::shared_ptr<CriterionList>> m_children;
    std::function<void()> m_actionBlock;
};

}  // namespace vigil
