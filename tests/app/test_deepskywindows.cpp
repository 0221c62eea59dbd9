// The deep-sky property pages edit their copy of the "DeepSky" settings
// field by field; the prefix dialog hands back the prefix chosen.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>

#include "app/deepskywindows.h"
#include "catalog/deepsky/deepskyfilter.h"

using namespace orv;

namespace {

QCheckBox* CheckBoxNamed(QWidget& page, const QString& text)
{
    for (QCheckBox* box : page.findChildren<QCheckBox*>())
        if (box->text() == text) return box;
    return nullptr;
}

}  // namespace

TEST(DeepSkyPages, ObjectTypeBoxesSetTheirBits)
{
    CDeepSkySettings s;
    s.objectTypes = 1;  // "All"
    CConfigDeepSkyObjectsPage page(s);
    QCheckBox* galaxy = CheckBoxNamed(page, "Galaxy");
    QCheckBox* all = CheckBoxNamed(page, "All");
    ASSERT_NE(galaxy, nullptr);
    ASSERT_NE(all, nullptr);
    EXPECT_TRUE(all->isChecked());
    EXPECT_FALSE(galaxy->isChecked());
    galaxy->setChecked(true);
    all->setChecked(false);
    EXPECT_EQ(s.objectTypes, 1 << static_cast<int>(ObjectType::Galaxy));
    EXPECT_TRUE(DeepSkyTypeBit(s, ObjectType::Galaxy));
}

TEST(DeepSkyPages, NamesPageEditsTheLabelOptionAndTheNameFilter)
{
    CDeepSkySettings s;
    CConfigDeepSkyNamesPage page(s);
    auto* filter = page.findChild<QLineEdit*>();
    auto* labels = page.findChild<QComboBox*>();
    ASSERT_NE(filter, nullptr);
    ASSERT_NE(labels, nullptr);
    filter->setText("NGC 7*");
    labels->setCurrentIndex(2);
    EXPECT_EQ(s.nameFilter, "NGC 7*");
    EXPECT_EQ(s.labelOption, 2);
}

TEST(DeepSkyPages, DisplayPageKeepsTheCatalogueLevels)
{
    CDeepSkySettings s;
    CConfigDeepSkyDisplayPage page(s);
    QCheckBox* shown = CheckBoxNamed(page, "Show deep-sky objects");
    ASSERT_NE(shown, nullptr);
    shown->setChecked(false);
    EXPECT_EQ(s.visible, 0);
    EXPECT_EQ(s.levelLowLEDA, 4);
    EXPECT_EQ(s.levelHighLEDA, 9);
}

TEST(DeepSkyPages, PrefixDialogGivesThePrefixChosen)
{
    CDeepSkyNameCatalogDlg dialog({{"NGC", "New General Catalogue"}, {"PN G", "Strasbourg-ESO"}});
    EXPECT_EQ(dialog.Prefix(), std::optional<std::string>("NGC"));
    dialog.List()->setCurrentRow(1);
    EXPECT_EQ(dialog.Prefix(), std::optional<std::string>("PN G"));
}
