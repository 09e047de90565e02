#include "CEditorColoursPreferencesWidget.h"

#include "CColourSelectButton_p.h"
#include "ColourPreviewSamples_p.h"
#include "Common/ZamPreferences/ZamPreferences.h"
#include "PreferenceText_p.h"
#include "ShaderEditComponent/compile/model/ZamStringConversion.h"
#include "ShaderEditComponent/highlighting/ShaderHighlightController.h"
#include "ShaderEditComponent/highlighting/ShaderHighlighter.h"

#include <QCheckBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTextBlock>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace
{
constexpr int s_iMaxFontSize = 512;
constexpr int s_iElementRole = Qt::UserRole;
constexpr int s_iNoElement = -1;

using SElementStyle = CEditorColoursPreferencesWidget::SElementStyle;

SElementStyle StyleOf(const QTextCharFormat& Format)
{
    return {Format.foreground().color(), Format.background().color(), IsHighlightFormatBold(Format),
            Format.fontUnderline()};
}

QTextCharFormat FormatOf(const SElementStyle& Style)
{
    return MakeHighlightFormat(Style.Foreground.rgba(), Style.Background.rgba(), Style.bBold, Style.bUnderline);
}

bool SameStyle(const SElementStyle& A, const SElementStyle& B)
{
    return A.Foreground.rgba() == B.Foreground.rgba() && A.Background.rgba() == B.Background.rgba()
           && A.bBold == B.bBold && A.bUnderline == B.bUnderline;
}

// "GLSL:ES/Keyword" is "Keyword" in the group "GLSL:ES"; "Error" belongs to no language.
QString GroupOf(const QString& Name)
{
    return Name.contains(QLatin1Char('/')) ? Name.section(QLatin1Char('/'), 0, 0) : QString();
}

QString ShortNameOf(const QString& Name)
{
    return Name.section(QLatin1Char('/'), -1);
}

QString ElementName(const CShaderHighlightController& Highlight, unsigned int uiElement)
{
    const CZamTString Name = Highlight.GetElementName(uiElement);
    return ToQString(Name);
}

template <typename TWidget> TWidget* Named(const char* pName, QWidget* pParent)
{
    TWidget* pWidget = new TWidget(pParent);
    pWidget->setObjectName(QLatin1String(pName));
    return pWidget;
}
} // namespace

CEditorColoursPreferencesWidget::CEditorColoursPreferencesWidget(CShaderHighlightController& Highlight,
                                                                 QWidget* pParent)
    : QWidget(pParent)
    , m_Highlight(Highlight)
    , m_Font(Highlight.GetFont())
    , m_pPreviewStore(CZamPreferences::MakeInMemory())
{
    setObjectName(QStringLiteral("EditorColoursPreferencesWidget"));
    m_pPreviewScheme = new CShaderHighlightController(m_pPreviewStore.get(), this);
    // The preview starts from what the editor shows now.
    m_pPreviewScheme->blockSignals(true);
    for (unsigned int i = 0; i < ElementCount; ++i)
    {
        m_Styles[i] = StyleOf(m_Highlight.GetFormat(i));
        m_pPreviewScheme->OnSyntaxColourChanged(i, FormatOf(m_Styles[i]));
    }
    m_pPreviewScheme->blockSignals(false);

    QGridLayout* pLayout = new QGridLayout(this);
    pLayout->addWidget(BuildElementTree(), 0, 0, 3, 1);
    pLayout->addWidget(BuildElementGroup(), 0, 1);
    pLayout->addWidget(BuildFontGroup(), 1, 1);
    pLayout->addWidget(BuildPreviewGroup(), 2, 1);
    pLayout->setColumnStretch(1, 1);
    pLayout->setRowStretch(2, 1);
    FillTree();
    Connect();
    OnRetranslate();
    SelectElement(HighlightElement_GLSLESKeyword);
    emit EnableOK(true);
}

CEditorColoursPreferencesWidget::~CEditorColoursPreferencesWidget()
{
    // The preview's highlighter (owned by its document) uses the preview scheme, which uses
    // the store: they go in that order.
    delete m_pPreview;
    delete m_pPreviewScheme;
}

QWidget* CEditorColoursPreferencesWidget::BuildElementTree()
{
    m_pTree = Named<QTreeWidget>("ElementTree", this);
    m_pTree->setColumnCount(1);
    m_pTree->header()->hide();
    m_pTree->setMinimumWidth(180);
    return m_pTree;
}

QGroupBox* CEditorColoursPreferencesWidget::BuildElementGroup()
{
    m_pElementGroup = Named<QGroupBox>("ElementGroup", this);
    m_pForegroundLabel = Named<QLabel>("ForegroundLabel", m_pElementGroup);
    m_pForeground = Named<CColourSelectButton>("ForegroundButton", m_pElementGroup);
    m_pBackgroundLabel = Named<QLabel>("BackgroundLabel", m_pElementGroup);
    m_pBackground = Named<CColourSelectButton>("BackgroundButton", m_pElementGroup);
    m_pBold = Named<QCheckBox>("BoldCheckbox", m_pElementGroup);
    m_pUnderline = Named<QCheckBox>("UnderlineCheckbox", m_pElementGroup);
    m_pDefaults = Named<QPushButton>("DefaultsButton", m_pElementGroup);
    m_pAllDefaults = Named<QPushButton>("AllDefaultsButton", m_pElementGroup);

    QFormLayout* pForm = new QFormLayout;
    pForm->addRow(m_pForegroundLabel, m_pForeground);
    pForm->addRow(m_pBackgroundLabel, m_pBackground);
    QHBoxLayout* pChecks = new QHBoxLayout;
    pChecks->addWidget(m_pBold);
    pChecks->addWidget(m_pUnderline);
    pChecks->addStretch();
    QHBoxLayout* pButtons = new QHBoxLayout;
    pButtons->addWidget(m_pDefaults);
    pButtons->addWidget(m_pAllDefaults);
    pButtons->addStretch();
    QVBoxLayout* pLayout = new QVBoxLayout(m_pElementGroup);
    pLayout->addLayout(pForm);
    pLayout->addLayout(pChecks);
    pLayout->addLayout(pButtons);
    return m_pElementGroup;
}

QGroupBox* CEditorColoursPreferencesWidget::BuildFontGroup()
{
    m_pFontGroup = Named<QGroupBox>("FontGroup", this);
    m_pFontFamily = Named<QFontComboBox>("FontCombo", m_pFontGroup);
    m_pFontSizeLabel = Named<QLabel>("FontSizeLabel", m_pFontGroup);
    m_pFontSize = Named<QSpinBox>("FontSize", m_pFontGroup);
    m_pFontSize->setRange(1, s_iMaxFontSize);
    m_pFontFamily->setCurrentFont(m_Font);
    m_pFontSize->setValue(qBound(1, m_Font.pointSize(), s_iMaxFontSize));
    QHBoxLayout* pLayout = new QHBoxLayout(m_pFontGroup);
    pLayout->addWidget(m_pFontFamily, 1);
    pLayout->addWidget(m_pFontSizeLabel);
    pLayout->addWidget(m_pFontSize);
    return m_pFontGroup;
}

QGroupBox* CEditorColoursPreferencesWidget::BuildPreviewGroup()
{
    m_pPreviewGroup = Named<QGroupBox>("PreviewGroup", this);
    m_pPreview = Named<QPlainTextEdit>("PreviewText", m_pPreviewGroup);
    m_pPreview->setReadOnly(true);
    m_pPreview->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_pPreview->setFont(m_Font);
    m_pPreviewHighlighter = new CShaderHighlighter(m_pPreview->document(), DocType_GLSLESFragment, m_pPreviewScheme);
    QVBoxLayout* pLayout = new QVBoxLayout(m_pPreviewGroup);
    pLayout->addWidget(m_pPreview);
    return m_pPreviewGroup;
}

void CEditorColoursPreferencesWidget::FillTree()
{
    QTreeWidgetItem* pGroup = nullptr;
    for (unsigned int i = 0; i < ElementCount; ++i)
    {
        const QString Name = ElementName(m_Highlight, i);
        const QString Group = GroupOf(Name);
        if (!pGroup || pGroup->data(0, s_iElementRole + 1).toString() != Group)
        {
            pGroup = new QTreeWidgetItem(m_pTree, QStringList(Group));
            pGroup->setData(0, s_iElementRole, s_iNoElement);
            pGroup->setData(0, s_iElementRole + 1, Group);
            pGroup->setFlags(Qt::ItemIsEnabled);
            pGroup->setExpanded(true);
        }
        QTreeWidgetItem* pItem = new QTreeWidgetItem(pGroup, QStringList(ShortNameOf(Name)));
        pItem->setData(0, s_iElementRole, static_cast<int>(i));
    }
}

void CEditorColoursPreferencesWidget::Connect()
{
    connect(m_pTree, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* pItem) { OnCurrentItemChanged(pItem); });
    connect(m_pForeground, &CColourSelectButton::ColourChanged, this,
            [this](const QColor& Colour)
            {
                SElementStyle Style = m_Styles[m_uiSelected];
                Style.Foreground = Colour;
                EditStyle(Style);
            });
    connect(m_pBackground, &CColourSelectButton::ColourChanged, this,
            [this](const QColor& Colour)
            {
                SElementStyle Style = m_Styles[m_uiSelected];
                Style.Background = Colour;
                EditStyle(Style);
            });
    connect(m_pBold, &QCheckBox::toggled, this,
            [this](bool bBold)
            {
                SElementStyle Style = m_Styles[m_uiSelected];
                Style.bBold = bBold;
                EditStyle(Style);
            });
    connect(m_pUnderline, &QCheckBox::toggled, this,
            [this](bool bUnderline)
            {
                SElementStyle Style = m_Styles[m_uiSelected];
                Style.bUnderline = bUnderline;
                EditStyle(Style);
            });
    connect(m_pDefaults, &QPushButton::clicked, this, &CEditorColoursPreferencesWidget::OnDefaults);
    connect(m_pAllDefaults, &QPushButton::clicked, this, &CEditorColoursPreferencesWidget::OnAllDefaults);
    connect(m_pFontFamily, &QFontComboBox::currentFontChanged, this, [this] { OnFontEdited(); });
    connect(m_pFontSize, qOverload<int>(&QSpinBox::valueChanged), this, [this] { OnFontEdited(); });
    connect(m_pPreviewScheme, &CShaderHighlightController::SyntaxColoursChanged, m_pPreviewHighlighter,
            &QSyntaxHighlighter::rehighlight);
}

void CEditorColoursPreferencesWidget::SelectElement(unsigned int uiElement)
{
    for (QTreeWidgetItemIterator it(m_pTree); *it; ++it)
    {
        if ((*it)->data(0, s_iElementRole).toInt() == static_cast<int>(uiElement))
        {
            m_pTree->setCurrentItem(*it);
            return;
        }
    }
}

void CEditorColoursPreferencesWidget::OnCurrentItemChanged(QTreeWidgetItem* pItem)
{
    const int iElement = pItem ? pItem->data(0, s_iElementRole).toInt() : s_iNoElement;
    if (iElement < 0 || iElement >= static_cast<int>(ElementCount))
        return;
    const bool bNewLanguage =
        PreviewTypeForElement(static_cast<unsigned int>(iElement)) != PreviewTypeForElement(m_uiSelected)
        || m_pPreview->document()->isEmpty();
    m_uiSelected = static_cast<unsigned int>(iElement);
    ShowElement();
    if (bNewLanguage)
        ShowPreviewFor(m_uiSelected);
}

void CEditorColoursPreferencesWidget::ShowElement()
{
    // Filling the controls must not count as an edit.
    m_bFilling = true;
    const SElementStyle& Style = m_Styles[m_uiSelected];
    m_pElementGroup->setTitle(ElementName(m_Highlight, m_uiSelected));
    m_pForeground->OnSetColour(Style.Foreground);
    m_pBackground->OnSetColour(Style.Background);
    m_pBold->setChecked(Style.bBold);
    m_pUnderline->setChecked(Style.bUnderline);
    m_bFilling = false;
}

void CEditorColoursPreferencesWidget::EditStyle(const SElementStyle& Style)
{
    if (m_bFilling)
        return;
    m_Styles[m_uiSelected] = Style;
    PushToPreview(m_uiSelected);
}

void CEditorColoursPreferencesWidget::PushToPreview(unsigned int uiElement)
{
    m_pPreviewScheme->OnSyntaxColourChanged(uiElement, FormatOf(m_Styles[uiElement]));
    if (uiElement == HighlightElement_Error)
        MarkPreviewError();
}

void CEditorColoursPreferencesWidget::ShowPreviewFor(unsigned int uiElement)
{
    const EShaderDocType eType = PreviewTypeForElement(uiElement);
    m_pPreviewHighlighter->SetDocumentType(eType);
    m_pPreview->setPlainText(PreviewSample(eType));
    MarkPreviewError();
}

void CEditorColoursPreferencesWidget::MarkPreviewError()
{
    QList<QTextEdit::ExtraSelection> Marks;
    const QTextCursor Found = m_pPreview->document()->find(PreviewErrorWord());
    if (!Found.isNull())
        Marks.append({Found, FormatOf(m_Styles[HighlightElement_Error])});
    m_pPreview->setExtraSelections(Marks);
}

void CEditorColoursPreferencesWidget::OnDefaults()
{
    m_Styles[m_uiSelected] = StyleOf(m_Highlight.GetDefaultFormat(m_uiSelected));
    ShowElement();
    PushToPreview(m_uiSelected);
}

void CEditorColoursPreferencesWidget::OnAllDefaults()
{
    m_pPreviewScheme->blockSignals(true);
    for (unsigned int i = 0; i < ElementCount; ++i)
    {
        m_Styles[i] = StyleOf(m_Highlight.GetDefaultFormat(i));
        PushToPreview(i);
    }
    m_pPreviewScheme->blockSignals(false);
    m_pPreviewHighlighter->rehighlight();
    ShowElement();
}

void CEditorColoursPreferencesWidget::OnFontEdited()
{
    m_Font.setFamily(m_pFontFamily->currentFont().family());
    m_Font.setPointSize(m_pFontSize->value());
    m_pPreview->setFont(m_Font);
}

void CEditorColoursPreferencesWidget::OnSave()
{
    for (unsigned int i = 0; i < ElementCount; ++i)
    {
        if (!SameStyle(m_Styles[i], StyleOf(m_Highlight.GetFormat(i))))
            m_Highlight.OnSyntaxColourChanged(i, FormatOf(m_Styles[i]));
    }
    const QFont& Current = m_Highlight.GetFont();
    if (m_Font.family() != Current.family() || m_Font.pointSize() != Current.pointSize())
        m_Highlight.OnSetFont(m_Font);
}

void CEditorColoursPreferencesWidget::OnRetranslate()
{
    m_pForegroundLabel->setText(PreferenceText(PrefText_Foreground));
    m_pBackgroundLabel->setText(PreferenceText(PrefText_Background));
    m_pBold->setText(PreferenceText(PrefText_Bold));
    m_pUnderline->setText(PreferenceText(PrefText_Underline));
    m_pDefaults->setText(PreferenceText(PrefText_Defaults));
    m_pAllDefaults->setText(PreferenceText(PrefText_AllDefaults));
    m_pFontGroup->setTitle(PreferenceText(PrefText_Font));
    m_pFontSizeLabel->setText(PreferenceText(PrefText_FontSize));
    m_pPreviewGroup->setTitle(PreferenceText(PrefText_Preview));
    for (int i = 0; i < m_pTree->topLevelItemCount(); ++i)
    {
        QTreeWidgetItem* pGroup = m_pTree->topLevelItem(i);
        if (pGroup->data(0, s_iElementRole + 1).toString().isEmpty())
            pGroup->setText(0, PreferenceText(PrefText_GeneralElements));
    }
}
