#pragma once
// Makes the kit's controls known to assistive tools (screen readers, UI automation) through
// Qt's accessibility interfaces: each gets a role and a name taken from what it shows (a
// button's title, a label's text, a row's labels in reading order, a text box's placeholder,
// a refresh control's state text) unless it was given an accessibility label, and controls a
// person acts on offer that act as their action. The interfaces follow the widget tree, so
// the tree can be walked from the window. Main thread.

namespace KitAccessibility {

// Installs the kit's interface factory; later calls change nothing. Every Window calls it.
void install();

} // namespace KitAccessibility
