#include "app/dataproblemsbox.h"

#include <QMessageBox>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include "util/dataproblems.h"

namespace orv {

QString TakeDataFileProblemsText()
{
    return QString::fromStdString(DataFileProblemsText(TakeDataFileProblems()));
}

bool ShowDataFileProblems(QWidget* parent)
{
    const QString text = TakeDataFileProblemsText();
    if (text.isEmpty()) return false;
    // Taken now, shown when the event loop runs: if the window has gone by
    // then, the message still appears, without a parent.
    QPointer<QWidget> owner(parent);
    QTimer::singleShot(0, [owner, text] { QMessageBox::warning(owner.data(), QObject::tr("Data files"), text); });
    return true;
}

}  // namespace orv
