#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "conditions/ConditionPredicate.hpp"
#include "host_contract/CycleObserver.hpp"
#include "host_contract/EvaluationDictionary.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/NotificationCenter.hpp"
#include "platform/RuleEditor.hpp"
#include "platform/SmallLock.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ActionStatus.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

namespace vigil {

class AudioPlayer;
class BoundCondition;
class Button;
class PredicateEditor;
class PredicateEditorRowTemplate;
struct CycleScratch;

/// One monitor: a condition over its station's readings, and the rows of actions that run when it holds.
///
/// The cycle (`dataChanged`) runs on the thread that posts the station's notification, everything else on the
/// main thread. All accessors are safe from any thread and have no side effects.
class QRVVigilPlugIn : public QRVPlugIn,
                       public InterfaceOwner,
                       public CycleReporting,
                       public RuleEditorDelegate {
  public:
    QRVVigilPlugIn();
    ~QRVVigilPlugIn() override;
    std::string className() const override;

    // Creation and archive.
    bool initWithAgent(std::shared_ptr<QRVAgentPlugIn> agent,
                       std::shared_ptr<SiteWindowController> siteWindowController) override;
    bool initWithCoder(KeyedDecoder& coder) override;
    void encodeWithCoder(KeyedEncoder& coder) const override;

    // Life in the host.
    std::shared_ptr<Object> start() override;
    std::shared_ptr<Object> stop() override;
    using QRVPlugIn::didLoad;
    /// Does nothing; the form without an argument stays the base's. (Keyword form: didLoad:)
    void didLoad(const std::shared_ptr<Object>& object);
    void willUnload() override;
    void viewWillAppear() override;
    void viewWillDisappear() override;
    void startEvaluation();
    void stopEvaluation();
    /// Does nothing: the switch is bound to `evaluating`, which counts at the next start or stop.
    void activateButtonClicked(Object* sender);

    // The rule editor, as its delegate: it chooses from `criteria` and what hangs below. Row and row type
    // make no difference. A node that is no criterion has no children and shows nothing.
    std::int64_t ruleEditorNumberOfChildrenForCriterion(RuleEditor& editor,
                                                        const std::shared_ptr<Object>& criterion,
                                                        RuleEditorRowType rowType) override;
    std::shared_ptr<Object> ruleEditorChildForCriterion(RuleEditor& editor, std::int64_t index,
                                                        const std::shared_ptr<Object>& criterion,
                                                        RuleEditorRowType rowType) override;
    DisplayValue ruleEditorDisplayValueForCriterion(RuleEditor& editor,
                                                    const std::shared_ptr<Object>& criterion,
                                                    std::int64_t row) override;
    /// Stores every row anew, in new lists. How many there are is asked of the monitor's own editor, what
    /// they hold of the one that changed; they are the same unless a host makes two.
    void ruleEditorRowsDidChange(const Notification& notification) override;
    /// Makes the condition editor's templates, puts the stored rows into the rule editor, or one row where
    /// none is stored, and then the condition into the condition editor. Throws std::out_of_range where
    /// display values are stored for fewer rows than criteria are, or more rows than an editor takes, and
    /// std::length_error for a row of more columns than it takes; the rows before then stand.
    void awakeFromNib() override;

    // The condition editor.
    /// Makes the four row templates (groups, numbers, texts, dates) of the station's present readings and
    /// puts them into the condition editor; `propertyArray` is then the keys in the order of the user's
    /// language.
    void loadPredicate();
    /// Each rewrites the left-hand menu of a template that holds plain keys: the expression becomes the key
    /// with the member, the title the reading's display name. (Keyword forms: setupPredicateFloatTemplates:
    /// and so on)
    void setupPredicateFloatTemplates(PredicateEditorRowTemplate& rowTemplate);
    void setupPredicateStringTemplates(PredicateEditorRowTemplate& rowTemplate);
    void setupPredicateDateTemplates(PredicateEditorRowTemplate& rowTemplate);
    /// Writes into `actionStatus` which comparisons of the condition hold for the station's present readings:
    /// "Alert was caused by Wind chill that is now 8 °C & Wind speed that is now 30 kt." Empties
    /// `propertyArray`. The printed condition is cut at the station's keys, so a key inside another key, a
    /// key in a quoted text and a nested group mislead it: std::out_of_range where a piece has no blank,
    /// std::invalid_argument where one is no condition; the status then stays as far as it was built.
    void determineWhatPartOfPredicateCauseAlert();

    /// One cycle: wait, readings, log line, verdict, actions, status, snapshot. (Keyword form: dataChanged:)
    void dataChanged(const Notification& notification);
    /// Runs every stored row, top to bottom, through the node at its head. Throws std::out_of_range for a row
    /// without a node or without display values; the rows behind it then do not run.
    void performActions();
    /// Plays and speaks the rows of the rule editor that play or speak, top to bottom, and leaves all others
    /// alone. (Keyword form: testSound:)
    void testSound(Object* sender);

    /// "" for 1, "s" for every other count. (Keyword form: getPlural:)
    static std::string getPlural(std::int32_t count);
    /// "Next trigger at %@" with `retriggerDate`.
    std::string getRunTime() const;
    /// "\nActive 1 day, 2 hrs and 3 mins.  Last checked at 14:05.09 hrs." for a number of seconds; keeps the
    /// time of day as `dateLastDbPull`. (Keyword form: getTimerRunTime:)
    std::string getTimerRunTime(std::int32_t seconds);

    // State. What is archived: the two row lists, evaluating, retriggerInterval, retriggerDate,
    // lastEvaluationDictionary, triggerOnlyOnChange, predicate.
    using CriteriaRows = std::vector<CriterionList>;         ///< entry i is row i's path, its root first
    using DisplayValueRows = std::vector<DisplayValueList>;  ///< entry i is row i's display values
    using Names = std::vector<std::string>;

    bool evaluating() const { return m_evaluating.get(); }
    void setEvaluating(bool flag) { m_evaluating.set(flag); }
    bool triggerOnlyOnChange() const { return m_triggerOnlyOnChange.get(); }
    void setTriggerOnlyOnChange(bool flag) { m_triggerOnlyOnChange.set(flag); }
    /// Minutes, fractions allowed; absent counts as 0.
    std::optional<Number> retriggerInterval() const { return m_retriggerInterval.get(); }
    void setRetriggerInterval(std::optional<Number> minutes) { m_retriggerInterval.set(minutes); }
    std::optional<Date> retriggerDate() const { return m_retriggerDate.get(); }
    void setRetriggerDate(std::optional<Date> date) { m_retriggerDate.set(date); }
    std::string actionStatus() const { return m_actionStatus.text(); }
    void setActionStatus(std::string_view text) { m_actionStatus.set(text); }
    std::shared_ptr<ConditionPredicate> predicate() const { return m_predicate.get(); }
    void setPredicate(std::shared_ptr<ConditionPredicate> predicate) {
        m_predicate.set(std::move(predicate));
    }
    std::optional<EvaluationDictionary> lastEvaluationDictionary() const {
        return m_lastEvaluationDictionary.get();
    }
    void setLastEvaluationDictionary(std::optional<EvaluationDictionary> d) {
        m_lastEvaluationDictionary.set(std::move(d));
    }
    /// The six roots of the rule editor's tree, unless others were set. Made when first asked for: a monitor
    /// that nobody edits needs none.
    std::shared_ptr<CriterionList> criteria() const;
    void setCriteria(std::shared_ptr<CriterionList> roots);
    std::shared_ptr<CriteriaRows> ruleEditorStoredCriteria() const { return m_storedCriteria.get(); }
    void setRuleEditorStoredCriteria(std::shared_ptr<CriteriaRows> rows) {
        m_storedCriteria.set(std::move(rows));
    }
    std::shared_ptr<DisplayValueRows> ruleEditorStoredDisplayValues() const {
        return m_storedDisplayValues.get();
    }
    void setRuleEditorStoredDisplayValues(std::shared_ptr<DisplayValueRows> rows) {
        m_storedDisplayValues.set(std::move(rows));
    }
    std::string currentPropertyStringValue() const { return m_currentPropertyStringValue.get(); }
    void setCurrentPropertyStringValue(std::string text) {
        m_currentPropertyStringValue.set(std::move(text));
    }
    /// A text, not a date; nothing reads or writes it.
    std::optional<std::string> currentDate() const { return m_currentDate.get(); }
    void setCurrentDate(std::optional<std::string> text) { m_currentDate.set(std::move(text)); }
    /// A text, not a date: the time of day of the last `getTimerRunTime`.
    std::optional<std::string> dateLastDbPull() const { return m_dateLastDbPull.get(); }
    void setDateLastDbPull(std::optional<std::string> text) { m_dateLastDbPull.set(std::move(text)); }
    std::shared_ptr<Names> propertyArray() const { return m_propertyArray.get(); }
    void setPropertyArray(std::shared_ptr<Names> names) { m_propertyArray.set(std::move(names)); }
    std::shared_ptr<AudioPlayer> audioPlayer() const { return m_audioPlayer.get(); }
    void setAudioPlayer(std::shared_ptr<AudioPlayer> player) { m_audioPlayer.set(std::move(player)); }
    std::optional<Date> startTime() const { return m_startTime.get(); }
    void setStartTime(std::optional<Date> date) { m_startTime.set(date); }
    std::shared_ptr<PredicateEditor> predicateEditor() const { return m_predicateEditor.get(); }
    void setPredicateEditor(std::shared_ptr<PredicateEditor> editor) {
        m_predicateEditor.set(std::move(editor));
    }
    std::shared_ptr<RuleEditor> ruleEditor() const { return m_ruleEditor.get(); }
    void setRuleEditor(std::shared_ptr<RuleEditor> editor) { m_ruleEditor.set(std::move(editor)); }
    std::shared_ptr<Button> activateButton() const { return m_activateButton.get(); }
    void setActivateButton(std::shared_ptr<Button> button) { m_activateButton.set(std::move(button)); }

    // Identity, as the host lists and shows it.
    std::string name() const override;
    std::string textDescription() const override;
    /// A table: the module's version, the description, whether the monitor is active. Texts are not escaped.
    std::string htmlDescription() const override;
    /// Empty, not absent.
    std::optional<std::string> xmlDescription() const override;
    std::optional<std::string> jsonDescription() const override;
    std::shared_ptr<Image> icon() const override;
    std::optional<std::string> group() const override;
    bool isUndockable() const override;
    bool isRenamable() const override;
    bool isDeletable() const override;

    InterfaceOwner* interfaceOwner() override { return this; }
    const InterfaceTable& interfaceTable() const override;
    CycleReporting* cycleReporting() override { return this; }
    void setCycleObserver(std::shared_ptr<CycleObserver> observer) override {
        m_cycleObserver = std::move(observer);
    }

  private:
    static InterfaceTable makeInterfaceTable();

    static std::shared_ptr<ConditionPredicate> defaultPredicate();
    void initCommon();
    std::shared_ptr<CriterionList> makeCriteria() const;
    HostWorld* world() const;
    bool connectPredicateEditor(const std::shared_ptr<Object>& object);
    bool judge(HostWorld& world, const Readings& batch, CycleScratch& scratch, ReadingsView& judged) const;
    const BoundCondition* condition(const Readings& batch, CycleScratch& scratch) const;
    void fire(HostWorld& world);
    std::unique_ptr<CycleScratch> takeScratch();
    void giveBack(std::unique_ptr<CycleScratch> scratch);

    Property<bool> m_evaluating;
    Property<bool> m_triggerOnlyOnChange;
    Property<std::optional<Number>> m_retriggerInterval;
    Property<std::shared_ptr<PredicateEditor>> m_predicateEditor;
    std::shared_ptr<const void> m_predicateEdits;  // while it lives, edits of the condition reach `predicate`
    Property<std::shared_ptr<RuleEditor>> m_ruleEditor;
    mutable SmallLock m_criteriaLock;
    mutable bool m_criteriaOwed = false;  // they are to be made when somebody asks
    mutable std::shared_ptr<CriterionList> m_criteria;
    Property<std::shared_ptr<CriteriaRows>> m_storedCriteria;
    Property<std::shared_ptr<DisplayValueRows>> m_storedDisplayValues;
    Property<std::optional<Date>> m_retriggerDate;
    ActionStatus m_actionStatus;
    Property<std::string> m_currentPropertyStringValue;
    Property<std::optional<std::string>> m_currentDate;
    Property<std::optional<std::string>> m_dateLastDbPull;
    Property<std::shared_ptr<Names>> m_propertyArray;
    Property<std::shared_ptr<AudioPlayer>> m_audioPlayer;
    Property<std::shared_ptr<ConditionPredicate>> m_predicate;
    Property<std::shared_ptr<Button>> m_activateButton;
    Property<std::optional<EvaluationDictionary>> m_lastEvaluationDictionary;
    Property<std::optional<Date>> m_startTime;

    std::shared_ptr<CycleObserver> m_cycleObserver;
    std::atomic<CycleScratch*> m_scratch{nullptr};  // owned; absent while a cycle uses it
};

}  // namespace vigil
