#include "ShaderHighlightController.h"

#include "Common/ZamPreferences/ZamPreferences.h"
#include "HighlightingLog_p.h"
#include "PaletteColours.h"

#include <QColor>
#include <QEvent>
#include <QGuiApplication>

namespace
{
const char* const s_ApplicationStore = "ZamShaderEditor";
const char* const s_FontFaceKey = "Editor/FontFace";
const char* const s_FontSizeKey = "Editor/FontSize";
const char* const s_DefaultFontFace = "Courier";
const int s_iDefaultFontSize = 12;
// Larger sizes in a damaged file would make the editor unusable; they are ignored.
const qint64 s_iMaxFontSize = 512;

QString ColourKey(const SHighlightElementRow& Row, const char* pField)
{
    return QStringLiteral("Colours/") + QLatin1String(Row.pName) + QLatin1Char('/') + QLatin1String(pField);
}

// Reading twice with different fallbacks tells a stored value from a missing or mistyped one.
bool ReadString(const CZamPreferences& Store, const QString& Key, QString* pValue)
{
    const QString First = Store.GetString(Key, QStringLiteral("a"));
    if (First != Store.GetString(Key, QStringLiteral("b")))
        return false;
    *pValue = First;
    return true;
}

bool ReadInteger(const CZamPreferences& Store, const QString& Key, qint64* pValue)
{
    const qint64 iFirst = Store.GetInteger(Key, 0);
    if (iFirst != Store.GetInteger(Key, 1))
        return false;
    *pValue = iFirst;
    return true;
}

const QTextCharFormat& EmptyFormat()
{
    static const QTextCharFormat s_Empty;
    return s_Empty;
}
} // namespace

CShaderHighlightController::CShaderHighlightController(QObject* pParent)
    : QObject(pParent)
    , m_pOwnedStore(std::make_unique<CZamPreferences>(QString::fromLatin1(s_ApplicationStore)))
    , m_pStore(m_pOwnedStore.get())
{
    QString TriedPath;
    QString Error;
    if (!m_pStore->Load(&TriedPath, &Error))
        qCDebug(lcZamHighlighting, "Failed to load Preference file: %s", qPrintable(Error));
    Load();
    FollowApplicationPalette();
}

CShaderHighlightController::CShaderHighlightController(CZamPreferences* pStore, QObject* pParent)
    : QObject(pParent)
    , m_pStore(pStore)
{
    Q_ASSERT(m_pStore);
    Load();
    FollowApplicationPalette();
}

CShaderHighlightController::~CShaderHighlightController() = default;

void CShaderHighlightController::Load()
{
    for (unsigned int i = 0; i < ElementCount; ++i)
    {
        const SHighlightElementRow& Row = GetHighlightElementRow(i);
        SSchemeEntry& Current = m_Current[i];
        Current.Name = Row.pName;
        Current.bSet = false;
        Current.Format = QTextCharFormat();
        if (m_pStore->HasGroup(QStringLiteral("Colours/") + QLatin1String(Row.pName)))
        {
            const quint32 uiBackground = m_pStore->GetArgb(ColourKey(Row, "Background"), Row.uiBackground);
            const quint32 uiForeground = m_pStore->GetArgb(ColourKey(Row, "Foreground"), Row.uiForeground);
            const bool bBold = m_pStore->GetBool(ColourKey(Row, "Bold"), Row.bBold);
            const bool bUnderline = m_pStore->GetBool(ColourKey(Row, "Underline"), Row.bUnderline);
            Current.Format = MakeHighlightFormat(uiForeground, uiBackground, bBold, bUnderline);
            Current.bSet = true;
        }
    }
    for (unsigned int i = 0; i < ElementCount; ++i)
    {
        const SHighlightElementRow& Row = GetHighlightElementRow(i);
        m_Defaults[i].Name = Row.pName;
        m_Defaults[i].Format = MakeHighlightFormat(Row.uiForeground, Row.uiBackground, Row.bBold, Row.bUnderline);
        m_Defaults[i].bSet = true;
    }
    LoadFont();
}

void CShaderHighlightController::LoadFont()
{
    m_Font = QFont(QString::fromLatin1(s_DefaultFontFace), s_iDefaultFontSize);
    QString Face;
    if (!ReadString(*m_pStore, QString::fromLatin1(s_FontFaceKey), &Face))
        return;
    m_Font.setFamily(Face);
    qint64 iSize = 0;
    if (ReadInteger(*m_pStore, QString::fromLatin1(s_FontSizeKey), &iSize) && iSize > 0 && iSize <= s_iMaxFontSize)
        m_Font.setPointSize(int(iSize));
}

bool CShaderHighlightController::Save()
{
    for (unsigned int i = 0; i < ElementCount; ++i)
    {
        if (!m_Current[i].bSet)
            continue;
        const SHighlightElementRow& Row = GetHighlightElementRow(i);
        const QTextCharFormat& Format = m_Current[i].Format;
        m_pStore->SetArgb(ColourKey(Row, "Background"), Format.background().color().rgba());
        m_pStore->SetArgb(ColourKey(Row, "Foreground"), Format.foreground().color().rgba());
        m_pStore->SetBool(ColourKey(Row, "Bold"), IsHighlightFormatBold(Format));
        m_pStore->SetBool(ColourKey(Row, "Underline"), Format.fontUnderline());
    }
    m_pStore->SetString(QString::fromLatin1(s_FontFaceKey), m_Font.family());
    m_pStore->SetInteger(QString::fromLatin1(s_FontSizeKey), m_Font.pointSize());
    QString Error;
    if (!m_pStore->Save(&Error))
    {
        qCDebug(lcZamHighlighting, "Failed to save Preference file: %s", qPrintable(Error));
        return false;
    }
    return true;
}

const QTextCharFormat& CShaderHighlightController::GetFormat(unsigned int uiElement) const
{
    if (uiElement >= ElementCount)
        return EmptyFormat();
    return m_Current[uiElement].bSet ? m_Current[uiElement].Format : GetDefaultFormat(uiElement);
}

const QTextCharFormat& CShaderHighlightController::GetCurrentFormat(unsigned int uiElement) const
{
    return uiElement < ElementCount ? m_Current[uiElement].Format : EmptyFormat();
}

const QTextCharFormat& CShaderHighlightController::GetDefaultFormat(unsigned int uiElement) const
{
    if (uiElement >= ElementCount)
        return EmptyFormat();
    return m_bDark ? m_DarkDefaults[uiElement].Format : m_Defaults[uiElement].Format;
}

void CShaderHighlightController::SetDarkDefaults(bool bDark, const QColor& Base)
{
    if (bDark == m_bDark && (!bDark || Base == m_DarkBase))
        return;
    m_bDark = bDark;
    m_DarkBase = Base;
    if (m_bDark)
        BuildDarkDefaults();
    emit SyntaxColoursChanged();
}

void CShaderHighlightController::BuildDarkDefaults()
{
    for (unsigned int i = 0; i < ElementCount; ++i)
    {
        const SHighlightElementRow& Dark = GetDarkHighlightElementRow(i);
        m_DarkDefaults[i].Name = Dark.pName;
        m_DarkDefaults[i].Format = MakeHighlightFormat(
            Dark.uiForeground, DarkBackgroundOn(Dark.uiBackground, m_DarkBase).rgba(), Dark.bBold, Dark.bUnderline);
        m_DarkDefaults[i].bSet = true;
    }
}

// Without a GUI application (the headless compile) there is no palette and the light scheme
// stands.
void CShaderHighlightController::FollowApplicationPalette()
{
    if (!qGuiApp)
        return;
    const QPalette Palette = QGuiApplication::palette();
    m_bDark = IsDarkPalette(Palette);
    m_DarkBase = Palette.color(QPalette::Base);
    BuildDarkDefaults();
    qGuiApp->installEventFilter(this);
}

bool CShaderHighlightController::eventFilter(QObject* pWatched, QEvent* pEvent)
{
    // A filter on the application sees every object's events; only its own palette news counts.
    if (pWatched == qGuiApp && pEvent->type() == QEvent::ApplicationPaletteChange)
    {
        const QPalette Palette = QGuiApplication::palette();
        SetDarkDefaults(IsDarkPalette(Palette), Palette.color(QPalette::Base));
    }
    return QObject::eventFilter(pWatched, pEvent);
}

bool CShaderHighlightController::IsCustomised(unsigned int uiElement) const
{
    return uiElement < ElementCount && m_Current[uiElement].bSet;
}

CZamTString CShaderHighlightController::GetElementName(unsigned int uiElement) const
{
    return uiElement < ElementCount ? m_Current[uiElement].Name : CZamTString();
}

void CShaderHighlightController::OnSyntaxColourChanged(uint uiElement, QTextCharFormat Format)
{
    if (uiElement >= ElementCount)
        return;
    m_Current[uiElement].Format = Format;
    m_Current[uiElement].bSet = true;
    Save();
    emit SyntaxColoursChanged();
}

void CShaderHighlightController::SetColourHiddenLater(bool bLater)
{
    m_bColourHiddenLater = bLater;
    if (!bLater)
        emit HiddenColouringDue();
}

void CShaderHighlightController::OnSetFont(QFont Font)
{
    m_Font = Font;
    Save();
    emit FontChanged(m_Font);
}
