#include "OutputViewSupport.h"

#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/highlighting/PaletteColours.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>

namespace
{
bool HasOverlongLine(const QString& Text, qsizetype iMaxLength)
{
    qsizetype iStart = 0;
    while (iStart <= Text.size())
    {
        qsizetype iEnd = Text.indexOf(QLatin1Char('\n'), iStart);
        if (iEnd < 0)
            iEnd = Text.size();
        if (iEnd - iStart > iMaxLength)
            return true;
        iStart = iEnd + 1;
    }
    return false;
}
} // namespace

QString BreakOverlongLines(const QString& Text, qsizetype iMaxLength)
{
    if (iMaxLength <= 0 || !HasOverlongLine(Text, iMaxLength))
        return Text;

    QString Broken;
    Broken.reserve(Text.size() + Text.size() / iMaxLength + 1);
    qsizetype iRun = 0;
    for (const QChar Char : Text)
    {
        if (Char == QLatin1Char('\n'))
        {
            iRun = 0;
        }
        else
        {
            // Never between the two halves of a character outside the BMP.
            if (iRun >= iMaxLength && !Char.isLowSurrogate())
            {
                Broken += QLatin1Char('\n');
                iRun = 0;
            }
            ++iRun;
        }
        Broken += Char;
    }
    return Broken;
}

QColor SourceLineBackground(const QPalette& Palette)
{
    return IsDarkPalette(Palette) ? QColor(38, 66, 104) : QColor(196, 222, 255);
}

SShaderSelector CreateShaderSelector(QWidget* pParent, const char* pLayoutName, const char* pLabelName,
                                     const char* pComboName)
{
    SShaderSelector Selector;
    Selector.pLayout = new QHBoxLayout();
    Selector.pLayout->setObjectName(QLatin1String(pLayoutName));
    Selector.pLabel = new QLabel(pParent);
    Selector.pLabel->setObjectName(QLatin1String(pLabelName));
    Selector.pCombo = new QComboBox(pParent);
    Selector.pCombo->setObjectName(QLatin1String(pComboName));
    Selector.pCombo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    Selector.pLabel->setBuddy(Selector.pCombo);
    Selector.pLayout->addWidget(Selector.pLabel);
    Selector.pLayout->addWidget(Selector.pCombo);
    Selector.pLayout->addStretch(1);
    return Selector;
}

void ShowShaderSelector(const SShaderSelector& Selector, bool bShow)
{
    Selector.pLabel->setVisible(bShow);
    Selector.pCombo->setVisible(bShow);
}

void FillShaderSelector(const SShaderSelector& Selector, const CZamTArray<SCompileResult::SProfile>& Profiles)
{
    const QSignalBlocker Blocker(Selector.pCombo);
    Selector.pCombo->clear();
    for (uint32_t ui = 0; ui < Profiles.GetSize(); ++ui)
        Selector.pCombo->addItem(ToQString(Profiles[ui].Name));
    Selector.pCombo->setCurrentIndex(0);
}

void ClearShaderSelector(const SShaderSelector& Selector)
{
    const QSignalBlocker Blocker(Selector.pCombo);
    Selector.pCombo->clear();
}
