// Text views route every edit through the delegate in UTF-16 units; first responder and the
// simulated keyboard.
#include "KitTestSupport.h"

#include "KeyboardObserver.h"
#include "TextView.h"
#include "TextViewDelegate.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QPlainTextEdit>

namespace {

struct Edit
{
    Range range;
    QString replacement;
    friend bool operator==(const Edit &, const Edit &) = default;
};

class Recorder : public TextViewDelegate
{
public:
    std::vector<Edit> asked;
    std::vector<std::string> events;
    qsizetype limit = 1000;
    bool mayBegin = true;

    bool textViewShouldBeginEditing(TextView *) override { return mayBegin; }
    void textViewDidBeginEditing(TextView *) override { events.push_back("begin"); }
    void textViewDidEndEditing(TextView *) override { events.push_back("end"); }
    void textViewDidChange(TextView *) override { events.push_back("change"); }
    bool shouldChangeTextInRange(TextView *view, const Range &range, const QString &text) override
    {
        asked.push_back({range, text});
        return view->text().size() - range.length + text.size() <= limit;
    }
};

class TextViewTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window = kittest::shownWindow();
        textView = new TextView(QRectF(45, 600, 265, 50));
        window->addSubview(textView);
        textView->setDelegate(&recorder);
    }

    Recorder recorder;
    std::unique_ptr<Window> window;
    TextView *textView = nullptr;
};

TEST_F(TextViewTest, typingIsOfferedCharacterByCharacterAndRefusedPastTheLimit)
{
    recorder.limit = 3;
    QTest::keyClicks(textView->inputWidget(), "abcd");
    EXPECT_EQ(textView->text(), "abc");
    EXPECT_EQ(recorder.asked, (std::vector<Edit>{{{0, 0}, "a"}, {{1, 0}, "b"}, {{2, 0}, "c"}, {{3, 0}, "d"}}));
    EXPECT_EQ(std::count(recorder.events.begin(), recorder.events.end(), "change"), 3);
}

TEST_F(TextViewTest, returnKeyBackspaceAndSelectionArriveAsReplacements)
{
    textView->setText("a😀b");
    EXPECT_TRUE(recorder.asked.empty()); // text set in code is not offered
    textView->setSelectedRange({3, 0});
    QTest::keyClick(textView->inputWidget(), Qt::Key_Backspace);
    EXPECT_EQ(recorder.asked.back(), (Edit{{1, 2}, ""})); // the emoji is two UTF-16 units
    EXPECT_EQ(textView->text(), "ab");

    QTest::keyClick(textView->inputWidget(), Qt::Key_Return);
    EXPECT_EQ(recorder.asked.back(), (Edit{{1, 0}, "\n"}));

    // Backspace and delete take whole user-perceived characters.
    textView->setText(QStringLiteral("a❤️👍🏽b"));
    textView->setSelectedRange({3, 0});
    QTest::keyClick(textView->inputWidget(), Qt::Key_Backspace);
    EXPECT_EQ(recorder.asked.back(), (Edit{{1, 2}, ""}));
    EXPECT_EQ(textView->text(), QStringLiteral("a👍🏽b"));
    textView->setSelectedRange({1, 0});
    QTest::keyClick(textView->inputWidget(), Qt::Key_Delete);
    EXPECT_EQ(recorder.asked.back(), (Edit{{1, 4}, ""}));
    EXPECT_EQ(textView->text(), "ab");

    textView->setText("hello");
    textView->setSelectedRange({1, 3});
    QTest::keyClicks(textView->inputWidget(), "E");
    EXPECT_EQ(recorder.asked.back(), (Edit{{1, 3}, "E"}));
    EXPECT_EQ(textView->text(), "hEo");
}

TEST_F(TextViewTest, pasteGoesInWholeAndInputMethodCommitIsOfferedWhole)
{
    // A paste is not offered to should-change, even past the delegate's limit; did-change
    // reports it.
    recorder.limit = 3;
    const std::size_t askedBefore = recorder.asked.size();
    QGuiApplication::clipboard()->setText("粘贴的文字");
    QTest::keyClick(textView->inputWidget(), Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(recorder.asked.size(), askedBefore);
    EXPECT_EQ(textView->text(), "粘贴的文字");
    EXPECT_EQ(recorder.events.back(), "change");
    recorder.limit = 100;

    QInputMethodEvent composing("ni", {});
    QCoreApplication::sendEvent(textView->inputWidget(), &composing);
    EXPECT_EQ(textView->text(), "粘贴的文字"); // still composing: nothing offered
    QInputMethodEvent commit;
    commit.setCommitString("你好");
    QCoreApplication::sendEvent(textView->inputWidget(), &commit);
    ASSERT_EQ(recorder.asked.size(), askedBefore + 1);
    EXPECT_EQ(recorder.asked.back(), (Edit{{5, 0}, "你好"}));
    EXPECT_EQ(textView->text(), "粘贴的文字你好");

    recorder.limit = 0;
    textView->insertText("x");
    EXPECT_EQ(textView->text(), "粘贴的文字你好");
}

TEST_F(TextViewTest, compositionOverASelectionReplacesItOnlyOnCommit)
{
    auto compose = [&](const QString &preedit) {
        QInputMethodEvent composing(preedit, {});
        QCoreApplication::sendEvent(textView->inputWidget(), &composing);
    };
    auto commit = [&](const QString &text) {
        QInputMethodEvent committing;
        committing.setCommitString(text);
        QCoreApplication::sendEvent(textView->inputWidget(), &committing);
    };

    textView->setText("hello world");
    textView->setSelectedRange({6, 5});
    compose("ni");
    compose("nih");
    EXPECT_EQ(textView->text(), "hello world");
    EXPECT_TRUE(recorder.asked.empty());
    commit("你");
    EXPECT_EQ(recorder.asked, (std::vector<Edit>{{{6, 5}, "你"}}));
    EXPECT_EQ(textView->text(), "hello 你");
    EXPECT_EQ(std::count(recorder.events.begin(), recorder.events.end(), "change"), 1);

    // Refused: the text and the selection stay as they were.
    recorder.limit = 0;
    textView->setSelectedRange({0, 5});
    compose("ha");
    commit("哈");
    EXPECT_EQ(recorder.asked.back(), (Edit{{0, 5}, "哈"}));
    EXPECT_EQ(textView->text(), "hello 你");
    EXPECT_EQ(textView->selectedRange(), (Range{0, 5}));
}

TEST_F(TextViewTest, firstResponderRaisesAndLowersTheKeyboard)
{
    std::vector<KeyboardNotification> shown;
    std::vector<KeyboardNotification> hidden;
    KeyboardObserver &keyboard = KeyboardObserver::shared();
    QObject context;
    QObject::connect(&keyboard, &KeyboardObserver::keyboardWillShow, &context,
                     [&](const KeyboardNotification &note) { shown.push_back(note); });
    QObject::connect(&keyboard, &KeyboardObserver::keyboardWillHide, &context,
                     [&](const KeyboardNotification &note) { hidden.push_back(note); });

    ASSERT_TRUE(textView->becomeFirstResponder());
    EXPECT_TRUE(textView->isFirstResponder());
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].frameEnd, QRectF(0, 667 - 258, 375, 258));
    EXPECT_GT(shown[0].animationDuration, 0);
    EXPECT_TRUE(window->keyboardView()->isVisible());

    // Moving to another input keeps the keyboard up.
    auto *other = new TextView(QRectF(0, 20, 375, 40));
    window->addSubview(other);
    ASSERT_TRUE(other->becomeFirstResponder());
    EXPECT_FALSE(textView->isFirstResponder());
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[1].frameBegin, QRectF(0, 667 - 258, 375, 258)); // from where it already is
    EXPECT_TRUE(hidden.empty());
    EXPECT_EQ(recorder.events, (std::vector<std::string>{"begin", "end"}));

    other->resignFirstResponder();
    ASSERT_EQ(hidden.size(), 1u);
    EXPECT_EQ(hidden[0].frameEnd, QRectF(0, 667, 375, 258));
    EXPECT_FALSE(window->keyboardView()->isVisible());

    recorder.mayBegin = false;
    EXPECT_FALSE(textView->becomeFirstResponder());
    EXPECT_EQ(shown.size(), 2u);
}

} // namespace
