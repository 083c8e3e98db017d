#include <filesystem>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"
#include "conditions/editor/PredicateEditor.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/Button.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/RuleEditor.hpp"
#include "tests/support/FakeWorld.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

/// An owner with a flag, a condition and a text.
class Settings : public QRVPlugIn, public InterfaceOwner {
  public:
    std::string className() const override { return "Settings"; }
    const InterfaceTable& interfaceTable() const override {
        static const InterfaceTable table{
            {{"on", [](InterfaceOwner& o) { return Value(settings(o).on.get()); },
              [](InterfaceOwner& o, const Value& v) {
                  settings(o).on.set(*v.as<bool>());
                  return true;
              },
              [](InterfaceOwner& o, std::function<void()> call) -> std::shared_ptr<const void> {
                  return settings(o).on.observe(std::move(call));
              }},
             {"condition", [](InterfaceOwner& o) { return settings(o).condition.get(); },
              [](InterfaceOwner& o, const Value& v) {
                  ++settings(o).conditionsSet;
                  settings(o).condition.set(v);
                  return true;
              },
              [](InterfaceOwner& o, std::function<void()> call) -> std::shared_ptr<const void> {
                  return settings(o).condition.observe(std::move(call));
              }},
             {"name", [](InterfaceOwner&) { return Value("name"); }}},
            {},
            {}};
        return table;
    }

    Property<bool> on{true};
    Property<Value> condition;
    int conditionsSet = 0;

  private:
    static Settings& settings(InterfaceOwner& owner) { return static_cast<Settings&>(owner); }
};

class InterfaceFileEditors : public testing::Test {
  protected:
    static std::string widget(const std::string& kind, const std::string& bind,
                              const std::string& properties = {}) {
        return "<widget class=\"" + kind + "\" name=\"w\">" + properties +
               (bind.empty() ? "" : "<property name=\"bind\"><string>" + bind + "</string></property>") +
               "</widget>";
    }

    std::vector<std::shared_ptr<Object>> load(const std::string& widgets, InterfaceOwner* owner) {
        m_folder.write("form.ui", "<ui version=\"4.0\">" + widgets + "</ui>");
        m_bundle.resourcePath = m_folder.path();
        auto objects = m_files.instantiate(m_bundle, "form", owner);
        return objects ? *objects : std::vector<std::shared_ptr<Object>>{};
    }

    std::string refusal(const std::string& widgets) {
        EXPECT_TRUE(load(widgets, m_settings.get()).empty());
        const std::string& error = m_files.lastError();
        return error.substr(
            std::min(error.size(), m_folder.path().size() + std::string("/form.ui: ").size()));
    }

    template <class T>
    static std::shared_ptr<T> only(const std::vector<std::shared_ptr<Object>>& objects) {
        return objects.size() == 1 ? std::dynamic_pointer_cast<T>(objects[0]) : nullptr;
    }

    TemporaryFolder m_folder;
    Bundle m_bundle;
    FakeWorld m_world;
    World::Scope m_scope{m_world};
    InterfaceFile m_files;
    std::shared_ptr<Settings> m_settings = std::make_shared<Settings>();
};

TEST_F(InterfaceFileEditors, ButtonsOfBothKindsKeepTheirTitleAndTheirState) {
    const auto objects =
        load(widget("QCheckBox", "",
                    "<property name=\"text\"><string>&amp;On</string></property>"
                    "<property name=\"checked\"><bool>true</bool></property>") +
                 widget("QPushButton", "", "<property name=\"text\"><string>Go</string></property>"),
             nullptr);
    ASSERT_EQ(objects.size(), 2u);
    const auto on = std::dynamic_pointer_cast<Button>(objects[0]);
    const auto go = std::dynamic_pointer_cast<Button>(objects[1]);
    ASSERT_TRUE(on && go);
    EXPECT_EQ(on->title(), "&On");
    EXPECT_TRUE(on->state());
    EXPECT_EQ(go->title(), "Go");
    EXPECT_FALSE(go->state());
}

TEST_F(InterfaceFileEditors, ABoundButtonAndItsOwnerShowTheSameState) {
    const auto button = only<Button>(load(widget("QCheckBox", "on"), m_settings.get()));
    ASSERT_TRUE(button) << m_files.lastError();
    EXPECT_TRUE(button->state());
    button->setState(false);
    EXPECT_FALSE(m_settings->on.get());
    m_settings->on.set(true);
    EXPECT_TRUE(button->state());
}

TEST_F(InterfaceFileEditors, ABoundConditionEditorShowsTheConditionAndSetsItOnEditsAlone) {
    const auto condition = ConditionPredicate::predicateWithFormat("a.unitValue < 1").value();
    m_settings->condition.set(Value(std::static_pointer_cast<Object>(condition)));
    const auto editor = only<PredicateEditor>(load(widget("PredicateEditor", "condition"), m_settings.get()));
    ASSERT_TRUE(editor) << m_files.lastError();
    EXPECT_EQ(editor->objectValue(), condition);
    editor->setObjectValue(ConditionPredicate::predicateWithFormat("b.unitValue < 2").value());
    EXPECT_EQ(m_settings->conditionsSet, 0) << "what it is given to show is no edit";
    ASSERT_TRUE(editor->setValueText(1, "3"));
    EXPECT_EQ(m_settings->conditionsSet, 1);
    EXPECT_EQ(*m_settings->condition.get().as<std::shared_ptr<Object>>(), editor->objectValue());
    EXPECT_EQ(editor->objectValue()->printed(), "b.unitValue < 3");
    m_settings->condition.set(Value());
    EXPECT_EQ(editor->objectValue(), nullptr);
}

TEST_F(InterfaceFileEditors, ARuleEditorIsMadeAnewOnEveryLoad) {
    const auto first = only<RuleEditor>(load(widget("RuleEditor", ""), m_settings.get()));
    const auto second = only<RuleEditor>(load(widget("RuleEditor", ""), m_settings.get()));
    ASSERT_TRUE(first && second);
    EXPECT_NE(first, second);
    EXPECT_EQ(first->numberOfRows(), 0);
}

TEST_F(InterfaceFileEditors, APropertyOfAnotherKindThanTheControlShowsIsRefused) {
    EXPECT_EQ(refusal(widget("QCheckBox", "name")), "widget \"w\": the property \"name\" is no flag");
    EXPECT_EQ(refusal(widget("PredicateEditor", "on")), "widget \"w\": the property \"on\" is no condition");
    EXPECT_EQ(refusal(widget("QLineEdit", "on")), "widget \"w\": the property \"on\" is no text");
    EXPECT_EQ(refusal(widget("RuleEditor", "on")), "widget \"w\": a RuleEditor shows no property");
    m_settings->condition.set(Value(std::static_pointer_cast<Object>(std::make_shared<Button>())));
    EXPECT_EQ(refusal(widget("PredicateEditor", "condition")),
              "widget \"w\": the property \"condition\" is no condition");
}

}  // namespace
}  // namespace vigil
