#include "host/kit/InterfaceFile.hpp"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "host_contract/QRVPlugIn.hpp"
#include "platform/Controls.hpp"
#include "platform/InterfaceOwner.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

/// An owner with a text, a number, an action, and an outlet for a text field.
class Form : public QRVPlugIn, public InterfaceOwner {
  public:
    std::string className() const override { return "Form"; }
    const InterfaceTable& interfaceTable() const override {
        static const InterfaceTable table{
            {{"title", [](InterfaceOwner& o) { return Value(form(o).text.get()); },
              [](InterfaceOwner& o, const Value& v) {
                  if (const auto* taken = v.as<std::string>(); taken && taken->size() <= 5)
                      form(o).text.set(*taken);
                  return true;
              },
              [](InterfaceOwner& o, std::function<void()> call) -> std::shared_ptr<const void> {
                  return form(o).text.observe(std::move(call));
              }},
             {"count", [](InterfaceOwner&) { return Value(1); }}},
            {{"go:", [](InterfaceOwner&, Object*) {}}},
            {{"field", [](InterfaceOwner& o, const std::shared_ptr<Object>& object) {
                  form(o).field = std::dynamic_pointer_cast<TextField>(object);
                  return !object || form(o).field;
              }}}};
        return table;
    }
    void awakeFromNib() override { fieldWhenAwake = field != nullptr; }

    Property<std::string> text{"first"};
    std::shared_ptr<TextField> field;
    std::optional<bool> fieldWhenAwake;

  private:
    static Form& form(InterfaceOwner& owner) { return static_cast<Form&>(owner); }
};

class InterfaceFileTest : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(m_folder);
        m_bundle.resourcePath = m_folder;
    }
    void TearDown() override { fs::remove_all(m_folder); }

    using Objects = std::optional<std::vector<std::shared_ptr<Object>>>;

    Objects load(const std::string& text, InterfaceOwner* owner = nullptr) {
        std::ofstream(m_bundle.resourcePath + "/form.ui", std::ios::binary) << text;
        return m_files.instantiate(m_bundle, "form", owner);
    }

    Objects loadWidgets(const std::string& widgets, InterfaceOwner* owner = nullptr) {
        return load(
            "<?xml version=\"1.0\"?><ui version=\"4.0\"><class>Form</class>"
            "<widget class=\"QWidget\" name=\"outer\"><layout class=\"QVBoxLayout\"><item>" +
                widgets + "</item></layout></widget></ui>",
            owner);
    }

    static std::string widget(const std::string& kind, const std::string& properties) {
        return "<widget class=\"" + kind + "\" name=\"w\">" + properties + "</widget>";
    }

    static std::string dynamic(const std::string& name, const std::string& value) {
        return "<property name=\"" + name + "\" stdset=\"0\"><string>" + value + "</string></property>";
    }

    /// The reason of the last load, without its file.
    std::string reason() const {
        const std::string place = m_bundle.resourcePath + "/form.ui: ";
        const std::string& error = m_files.lastError();
        return error.starts_with(place) ? error.substr(place.size()) : error;
    }

    const std::string m_folder =
        testing::TempDir() + "interface-" + testing::UnitTest::GetInstance()->current_test_info()->name();
    Bundle m_bundle;
    FakeWorld m_world;
    World::Scope m_scope{m_world};
    InterfaceFile m_files;
    std::shared_ptr<Form> m_form = std::make_shared<Form>();
};

TEST_F(InterfaceFileTest, theControlsOfRowsAreOneControlEach) {
    m_bundle.resourcePath = VIGIL_SOURCE_DIR "/resources";
    const auto field = m_files.instantiate(m_bundle, "TextField", nullptr);
    ASSERT_TRUE(field && field->size() == 1) << m_files.lastError();
    EXPECT_EQ((*field)[0]->className(), "TextField");
    EXPECT_EQ(std::dynamic_pointer_cast<TextField>((*field)[0])->stringValue(), "");
    const auto popUp = m_files.instantiate(m_bundle, "PopUpButton", nullptr);
    ASSERT_TRUE(popUp && popUp->size() == 1) << m_files.lastError();
    EXPECT_EQ(std::dynamic_pointer_cast<PopUpButton>((*popUp)[0])->itemTitles(), std::vector<std::string>{});
    EXPECT_NE(m_files.instantiate(m_bundle, "TextField", nullptr), field) << "new ones on every call";
}

TEST_F(InterfaceFileTest, controlsComeInTheFilesOrderWithWhatTheyHold) {
    const auto objects =
        loadWidgets(widget("QComboBox",
                           "<property name=\"currentIndex\"><number>1</number></property>"
                           "<item><property name=\"text\"><string>low</string></property></item>"
                           "<item><property name=\"text\"><string>h&amp;gh</string></property></item>") +
                    widget("QLabel", "<property name=\"text\"><string>no model</string></property>") +
                    widget("QLineEdit", "<property name=\"text\"><string>ü</string></property>"));
    ASSERT_TRUE(objects) << reason();
    ASSERT_EQ(objects->size(), 2u);
    const auto popUp = std::dynamic_pointer_cast<PopUpButton>((*objects)[0]);
    EXPECT_EQ(popUp->itemTitles(), (std::vector<std::string>{"low", "h&gh"}));
    EXPECT_EQ(popUp->titleOfSelectedItem(), "h&gh");
    EXPECT_EQ(std::dynamic_pointer_cast<TextField>((*objects)[1])->stringValue(), "ü");
}

TEST_F(InterfaceFileTest, withoutAnIndexTheFirstItemIsSelectedAndWithNoneOfItsItemsNothing) {
    const std::string items = "<item><property name=\"text\"><string>low</string></property></item>";
    const auto selected = [&](const std::string& property) {
        const auto objects = loadWidgets(widget("QComboBox", property + items));
        return std::dynamic_pointer_cast<PopUpButton>(objects->at(0))->titleOfSelectedItem();
    };
    EXPECT_EQ(selected(""), "low");
    EXPECT_EQ(selected("<property name=\"currentIndex\"><number>-1</number></property>"), std::nullopt);
    EXPECT_EQ(selected("<property name=\"currentIndex\"><number>7</number></property>"), std::nullopt);
}

TEST_F(InterfaceFileTest, aFileThatCannotBeUnderstoodGivesNothingAndSaysWhy) {
    EXPECT_FALSE(m_files.instantiate(m_bundle, "form", nullptr));
    EXPECT_EQ(reason(), "there is no such file");
    EXPECT_FALSE(load("<ui><widget></ui>"));
    EXPECT_TRUE(reason().starts_with("not XML at byte ")) << reason();
    EXPECT_FALSE(load(""));
    EXPECT_TRUE(reason().starts_with("not XML at byte 0")) << reason();
    EXPECT_FALSE(load("<html/>"));
    EXPECT_EQ(reason(), "its outermost element is not \"ui\"");
    EXPECT_FALSE(load("<ui>\xFF</ui>"));
    EXPECT_EQ(reason(), "it is no UTF-8");
    EXPECT_FALSE(load("<ui>" + std::string(kLongestInterfaceFile, ' ') + "</ui>"));
    EXPECT_EQ(reason(), "it is longer than 1048576 bytes");
    EXPECT_TRUE(load("<ui/>"));
    EXPECT_EQ(m_files.lastError(), "");
}

TEST_F(InterfaceFileTest, noFileIsFetchedForAnEntity) {
    std::ofstream(m_bundle.resourcePath + "/secret") << "secret";
    const auto objects =
        load("<!DOCTYPE ui [<!ENTITY x SYSTEM \"" + m_bundle.resourcePath + "/secret\">]><ui>" +
             widget("QLineEdit", "<property name=\"text\"><string>&x;</string></property>") + "</ui>");
    ASSERT_TRUE(objects) << reason();
    EXPECT_EQ(std::dynamic_pointer_cast<TextField>(objects->at(0))->stringValue(), "&x;");
}

TEST_F(InterfaceFileTest, aVeryDeepFileIsWalkedWithoutHarm) {
    std::string end;
    for (int i = 0; i < 60'000; ++i)
        end += "</a>";
    std::string deep = "<ui>";
    for (int i = 0; i < 60'000; ++i)
        deep += "<a>";
    const auto objects = load(deep + widget("QLineEdit", "") + end + "</ui>");
    ASSERT_TRUE(objects) << reason();
    EXPECT_EQ(objects->size(), 1u);
}

TEST_F(InterfaceFileTest, anOutletHoldsItsControlBeforeTheOwnerAwakes) {
    const auto objects = loadWidgets(widget("QLineEdit", dynamic("outlet", "field")), m_form.get());
    ASSERT_TRUE(objects) << reason();
    EXPECT_EQ(m_form->field, objects->at(0));
    EXPECT_EQ(m_form->fieldWhenAwake, true);
}

TEST_F(InterfaceFileTest, namesThatTheOwnerLacksFailTheWholeLoad) {
    const std::string good = widget("QLineEdit", dynamic("outlet", "field"));
    EXPECT_FALSE(loadWidgets(good + widget("QLabel", dynamic("bind", "titel")), m_form.get()));
    EXPECT_EQ(reason(), "widget \"w\": its owner has no property \"titel\"");
    EXPECT_FALSE(loadWidgets(good + widget("QPushButton", dynamic("action", "go")), m_form.get()));
    EXPECT_EQ(reason(), "widget \"w\": its owner has no action \"go\"");
    EXPECT_FALSE(loadWidgets(good + widget("QLineEdit", dynamic("outlet", "")), m_form.get()));
    EXPECT_EQ(reason(), "widget \"w\": its owner has no outlet \"\"");
    EXPECT_FALSE(loadWidgets(good + widget("QComboBox", dynamic("outlet", "field")), m_form.get()));
    EXPECT_EQ(reason(), "widget \"w\": the outlet \"field\" does not take a PopUpButton");
    EXPECT_FALSE(loadWidgets(good + widget("QLineEdit", dynamic("bind", "count")), m_form.get()));
    EXPECT_EQ(reason(), "widget \"w\": the property \"count\" is no text");
    EXPECT_FALSE(m_form->field) << "nothing stays connected";
    EXPECT_FALSE(m_form->fieldWhenAwake) << "and the owner does not awake";
    EXPECT_TRUE(loadWidgets(good + widget("QPushButton", dynamic("action", "go:")), m_form.get()));
    EXPECT_TRUE(loadWidgets(widget("QLineEdit", dynamic("bind", "titel"))))
        << "without an owner nothing is asked";
}

TEST_F(InterfaceFileTest, aBoundFieldAndItsOwnerShowTheSameText) {
    auto objects = loadWidgets(widget("QLineEdit", dynamic("bind", "title")), m_form.get());
    ASSERT_TRUE(objects) << reason();
    auto field = std::dynamic_pointer_cast<TextField>(objects->at(0));
    EXPECT_EQ(field->stringValue(), "first");
    m_form->text.set("other");
    EXPECT_EQ(field->stringValue(), "other");
    field->setStringValue("mine");
    EXPECT_EQ(m_form->text.get(), "mine");
    field->setStringValue("too long");
    EXPECT_EQ(m_form->text.get(), "mine");
    EXPECT_EQ(field->stringValue(), "mine") << "the owner did not take it";

    m_form.reset();
    field->setStringValue("alone");
    EXPECT_EQ(field->stringValue(), "alone") << "an owner that has gone is not asked";
}

TEST_F(InterfaceFileTest, whatAnotherThreadSetsComesByWayOfTheMainQueue) {
    const auto objects = loadWidgets(widget("QLineEdit", dynamic("bind", "title")), m_form.get());
    ASSERT_TRUE(objects) << reason();
    const auto field = std::dynamic_pointer_cast<TextField>(objects->at(0));
    m_world.mainQueue().setMainThread(false);
    m_form->text.set("later");
    EXPECT_EQ(field->stringValue(), "first");
    m_world.mainQueue().setMainThread(true);
    m_world.mainQueue().runPosted();
    EXPECT_EQ(field->stringValue(), "later");
}

TEST_F(InterfaceFileTest, aBoundPopUpShowsTheTitleAndAFieldThatHasGoneIsForgotten) {
    const std::string items =
        "<item><property name=\"text\"><string>low</string></property></item>"
        "<item><property name=\"text\"><string>high</string></property></item>";
    m_form->text.set("high");
    auto objects = loadWidgets(widget("QComboBox", items + dynamic("bind", "title")), m_form.get());
    ASSERT_TRUE(objects) << reason();
    auto popUp = std::dynamic_pointer_cast<PopUpButton>(objects->at(0));
    EXPECT_EQ(popUp->titleOfSelectedItem(), "high");
    popUp->selectItemWithTitle("low");
    EXPECT_EQ(m_form->text.get(), "low");
    std::weak_ptr<PopUpButton> weak = popUp;
    popUp.reset();
    objects.reset();
    EXPECT_TRUE(weak.expired());
    m_form->text.set("high");
}

}  // namespace
}  // namespace vigil
