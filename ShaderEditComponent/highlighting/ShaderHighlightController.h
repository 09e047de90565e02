#pragma once

#include "ShaderHighlightElements.h"
#include "Tools/ZamTString.h"

#include <QFont>
#include <QObject>
#include <QTextCharFormat>

#include <array>
#include <memory>

class CZamPreferences;

// Owns the colour scheme (one format per syntax element) and the editor font, loaded from
// and saved to the preference store. Elements without a customised entry use the built-in
// default format.
class CShaderHighlightController : public QObject
{
    Q_OBJECT

public:
    static constexpr unsigned int ElementCount = HighlightElement_Count;

    // Uses the application's store "ZamShaderEditor".
    explicit CShaderHighlightController(QObject* pParent = nullptr);
    // Uses a store the caller has loaded and keeps alive; it is not loaded again.
    explicit CShaderHighlightController(CZamPreferences* pStore, QObject* pParent = nullptr);
    ~CShaderHighlightController() override;

    // The format the highlighter uses: the customised one if set, else the default.
    const QTextCharFormat& GetFormat(unsigned int uiElement) const;
    const QTextCharFormat& GetCurrentFormat(unsigned int uiElement) const;
    // The built-in format for the palette in use: the light scheme, or its dark variant while
    // the application's palette is dark.
    const QTextCharFormat& GetDefaultFormat(unsigned int uiElement) const;
    bool IsUsingDarkDefaults() const { return m_bDark; }
    // Follows the application's palette unless told otherwise here; a switch re-colours. Base is
    // the dark palette's base colour, on which the dark effect backgrounds are laid.
    void SetDarkDefaults(bool bDark, const QColor& Base);
    bool IsCustomised(unsigned int uiElement) const;
    CZamTString GetElementName(unsigned int uiElement) const;
    const QFont& GetFont() const { return m_Font; }

    // While on, a document in a hidden widget is coloured when the widget is first shown or
    // when this is turned off again: a start colours the tab on screen before its first
    // paint and the other restored tabs after it.
    void SetColourHiddenLater(bool bLater);
    bool IsColouringHiddenLater() const { return m_bColourHiddenLater; }

    // Writes the customised entries and the font, then the preference file.
    bool Save();

signals:
    void SyntaxColoursChanged();
    void FontChanged(const QFont& Font);
    // SetColourHiddenLater(false): the documents still waiting are coloured now.
    void HiddenColouringDue();

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

public slots:
    // Both save at once, like every other setting.
    void OnSyntaxColourChanged(uint uiElement, QTextCharFormat Format);
    void OnSetFont(QFont Font);

private:
    struct SSchemeEntry
    {
        CZamTString Name;
        QTextCharFormat Format;
        bool bSet = false;
    };

    void Load();
    void LoadFont();
    void FollowApplicationPalette();
    void BuildDarkDefaults();

    std::unique_ptr<CZamPreferences> m_pOwnedStore;
    CZamPreferences* m_pStore;
    std::array<SSchemeEntry, ElementCount> m_Current;
    std::array<SSchemeEntry, ElementCount> m_Defaults;
    std::array<SSchemeEntry, ElementCount> m_DarkDefaults;
    bool m_bDark = false;
    QColor m_DarkBase = Qt::black;
    QFont m_Font;
    bool m_bColourHiddenLater = false;
};
