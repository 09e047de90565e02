#include "CNewShaderFileDialog.h"

#include "IconResources.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace
{
struct STypeIcons
{
    EShaderDocType eType;
    const char* pSmall; // null: the type has no small icon
    const char* pLarge;
};

const STypeIcons s_TypeIcons[] = {
    {DocType_PlainText, nullptr, "newfile_plaintext_48.png"},
    {DocType_GLSLESVertex, "gles_vs_16.png", "newfile_gles_vs_48.png"},
    {DocType_GLSLESFragment, "gles_fs_16.png", "newfile_gles_fs_48.png"},
    {DocType_ZFXGLSLES, "gles_fx_16.png", "newfile_gles_fx_48.png"},
    {DocType_GLSLVertex, "gl_vs_16.png", "newfile_gl_vs_48.png"},
    {DocType_GLSLFragment, "gl_fs_16.png", "newfile_gl_fs_48.png"},
    {DocType_ZFXGLSL, "gl_fx_16.png", "newfile_gl_fx_48.png"},
    {DocType_HLSLVertex, "dx_vs_16.png", "newfile_hlsl_vs_48.png"},
    {DocType_HLSLFragment, "dx_ps_16.png", "newfile_hlsl_ps_48.png"},
    {DocType_HLSLGeometry, "dx_gs_16.png", "newfile_hlsl_gs_48.png"},
    {DocType_HLSLFX, "dx_fx_16.png", "newfile_hlsl_fx_48.png"},
    {DocType_OpenCLKernel, nullptr, "newfile_plaintext_48.png"},
};

const STypeIcons* IconsOf(EShaderDocType eType)
{
    for (const STypeIcons& Icons : s_TypeIcons)
    {
        if (Icons.eType == eType)
            return &Icons;
    }
    return nullptr;
}

QString IconPath(const char* pName)
{
    return QStringLiteral(":/ShaderEditComponent/Icons/") + QLatin1String(pName);
}

// The type selected when the dialog opens: the first type that compiles in the background.
constexpr EShaderDocType s_eInitialType = DocType_GLSLESVertex;
} // namespace

CNewShaderFileDialog::CNewShaderFileDialog(QWidget* pParent)
    : QDialog(pParent)
{
    InitIconResources();
    BuildForm();
    QTreeWidgetItem* pInitial = FillTree();

    connect(m_pFileTypeTree, &QTreeWidget::currentItemChanged, this, &CNewShaderFileDialog::OnFileCategoryChanged);
    connect(m_pFileTypeTree, &QTreeWidget::itemDoubleClicked, this, &CNewShaderFileDialog::OnTypeDoubleClicked);
    connect(m_pButtonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_pButtonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::accepted, this, &CNewShaderFileDialog::OnNewFile);
    m_pFileTypeTree->setCurrentItem(pInitial);
}

CNewShaderFileDialog::~CNewShaderFileDialog() = default;

void CNewShaderFileDialog::BuildForm()
{
    setObjectName(QStringLiteral("NewShaderFileDialog"));
    setWindowTitle(tr("New File"));
    setModal(true);

    auto* pOuter = new QVBoxLayout(this);
    pOuter->setObjectName(QStringLiteral("verticalLayout_2"));
    auto* pColumns = new QHBoxLayout();
    pColumns->setObjectName(QStringLiteral("horizontalLayout"));
    auto* pDetails = new QVBoxLayout();
    pDetails->setObjectName(QStringLiteral("verticalLayout"));

    m_pFileTypeTree = new QTreeWidget(this);
    m_pFileTypeTree->setObjectName(QStringLiteral("FileTypeTree"));
    m_pFileTypeTree->setHeaderHidden(true);
    m_pFileTypeTree->setColumnCount(1);
    m_pFileTypeTree->setIconSize(QSize(16, 16));
    m_pFileTypeTree->setMinimumSize(280, 320);

    m_pFileTypeIcon = new QLabel(this);
    m_pFileTypeIcon->setObjectName(QStringLiteral("FileTypeIcon"));
    m_pFileTypeIcon->setFixedSize(48, 48);
    m_pFileTypeTitle = new QLabel(this);
    m_pFileTypeTitle->setObjectName(QStringLiteral("FileTypeTitle"));
    QFont TitleFont = m_pFileTypeTitle->font();
    TitleFont.setBold(true);
    m_pFileTypeTitle->setFont(TitleFont);
    m_pFileTypeDesc = new QLabel(this);
    m_pFileTypeDesc->setObjectName(QStringLiteral("FileTypeDesc"));
    m_pFileTypeDesc->setWordWrap(true);
    m_pFileTypeDesc->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_pFileTypeDesc->setMinimumWidth(220);

    pDetails->addWidget(m_pFileTypeIcon);
    pDetails->addWidget(m_pFileTypeTitle);
    pDetails->addWidget(m_pFileTypeDesc, 1);
    pColumns->addWidget(m_pFileTypeTree, 1);
    pColumns->addLayout(pDetails, 1);

    m_pButtonBox = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    m_pButtonBox->setObjectName(QStringLiteral("buttonBox"));
    pOuter->addLayout(pColumns, 1);
    pOuter->addWidget(m_pButtonBox);
}

// Types are listed in the shared order; each language gets a heading the first time one
// of its types appears, so the headings follow that order too. Plain text has no
// language and stands on its own.
QTreeWidgetItem* CNewShaderFileDialog::FillTree()
{
    QTreeWidgetItem* pInitial = nullptr;
    for (const SNewFileEntry& Entry : GetNewFileEntries())
    {
        QTreeWidgetItem* pItem = Entry.eGroup == LanguageGroup_PlainText ? new QTreeWidgetItem(m_pFileTypeTree)
                                                                         : new QTreeWidgetItem(GroupItem(Entry.eGroup));
        const STypeIcons* pIcons = IconsOf(Entry.eType);
        const QString Title = GetDocTypeName(Entry.eType);
        pItem->setText(0, Title);
        if (pIcons && pIcons->pSmall)
            pItem->setIcon(0, QIcon(IconPath(pIcons->pSmall)));
        m_Records.insert(pItem, {Entry.eType, pIcons ? IconPath(pIcons->pLarge) : QString(), Title,
                                 GetDocTypeDescription(Entry.eType)});
        if (Entry.eType == s_eInitialType)
            pInitial = pItem;
    }
    m_pFileTypeTree->expandAll();
    return pInitial;
}

QTreeWidgetItem* CNewShaderFileDialog::GroupItem(EShaderLanguageGroup eGroup)
{
    QTreeWidgetItem*& pGroup = m_Groups[eGroup];
    if (!pGroup)
    {
        pGroup = new QTreeWidgetItem(m_pFileTypeTree);
        pGroup->setText(0, GetLanguageName(eGroup));
        QFont GroupFont = pGroup->font(0);
        GroupFont.setBold(true);
        pGroup->setFont(0, GroupFont);
    }
    return pGroup;
}

void CNewShaderFileDialog::OnFileCategoryChanged(QTreeWidgetItem* pItem)
{
    const auto It = m_Records.constFind(pItem);
    const bool bIsType = It != m_Records.cend();
    // A language heading is not a type: nothing to describe and nothing to create.
    m_pButtonBox->button(QDialogButtonBox::Ok)->setEnabled(bIsType);
    if (!bIsType)
    {
        m_pFileTypeIcon->clear();
        m_pFileTypeTitle->clear();
        m_pFileTypeDesc->clear();
        return;
    }
    m_pFileTypeIcon->setPixmap(QPixmap(It->LargeIcon));
    m_pFileTypeTitle->setText(It->Title);
    m_pFileTypeDesc->setText(It->Description);
}

void CNewShaderFileDialog::OnNewFile()
{
    const auto It = m_Records.constFind(m_pFileTypeTree->currentItem());
    if (It != m_Records.cend())
        emit NewFile(It->eType);
}

void CNewShaderFileDialog::OnTypeDoubleClicked(QTreeWidgetItem* pItem)
{
    // On a heading the tree's own double-click behaviour (fold and unfold) is enough.
    if (!m_Records.contains(pItem))
        return;
    m_pFileTypeTree->setCurrentItem(pItem);
    accept();
}
