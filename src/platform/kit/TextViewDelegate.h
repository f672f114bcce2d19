#pragma once
// What a text view asks of and tells its delegate. Every typed edit (keys, the return key as
// "\n", backspace as an empty replacement, input method commit, insertText) is offered to
// shouldChangeTextInRange first and dropped when it answers false. Pasted and dropped text
// goes in whole and is reported by textViewDidChange only. Main thread.

#include "Range.h"

#include <QString>

class TextView;

class TextViewDelegate
{
public:
    virtual ~TextViewDelegate() = default;

    virtual bool textViewShouldBeginEditing(TextView *) { return true; }
    virtual void textViewDidBeginEditing(TextView *) {}
    virtual void textViewDidEndEditing(TextView *) {}
    virtual bool shouldChangeTextInRange(TextView *, const Range &, const QString & /*replacementText*/)
    {
        return true;
    }
    virtual void textViewDidChange(TextView *) {}
};
