// Damaged data files told to the user where they are met: a window that has
// just opened a file (a map and its overlays, an overlay made active, an
// eclipse table) shows what the readers refused at once, rather than at the
// chart's next redraw, which may be much later or never.
#pragma once

class QWidget;
class QString;

namespace orv {

// Shows the data-file problems reported since they were last taken, in one
// warning over `parent`, once each; nothing when there are none. The box is
// queued (it opens when the event loop next runs), so that a window being
// built or painted is not interrupted by a modal message. True when a box
// was queued.
bool ShowDataFileProblems(QWidget* parent);

// The pending problems as text, taken (empty when none): for a message that
// already tells of a failure and can say why.
QString TakeDataFileProblemsText();

}  // namespace orv
