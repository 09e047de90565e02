#pragma once

#include "ShaderEditComponent/compile/model/ShaderDocType.h"

#include <QDialog>
#include <QHash>
#include <QString>

class QDialogButtonBox;
class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

// The modal dialog in which the user picks the type of a new document: the types in a
// tree under their language names, with a large icon, the title and the description of
// the selected type. Accepting emits NewFile with that type.
class CNewShaderFileDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CNewShaderFileDialog(QWidget* pParent = nullptr);
    ~CNewShaderFileDialog() override;

signals:
    void NewFile(EShaderDocType eType);

private slots:
    void OnFileCategoryChanged(QTreeWidgetItem* pItem);
    void OnNewFile();
    void OnTypeDoubleClicked(QTreeWidgetItem* pItem);

private:
    // What the dialog shows for one type.
    struct SFileTypeRecord
    {
        EShaderDocType eType;
        QString LargeIcon;
        QString Title;
        QString Description;
    };

    void BuildForm();
    // Returns the item selected when the dialog opens.
    QTreeWidgetItem* FillTree();
    QTreeWidgetItem* GroupItem(EShaderLanguageGroup eGroup);

    QTreeWidget* m_pFileTypeTree = nullptr;
    QLabel* m_pFileTypeIcon = nullptr;
    QLabel* m_pFileTypeTitle = nullptr;
    QLabel* m_pFileTypeDesc = nullptr;
    QDialogButtonBox* m_pButtonBox = nullptr;
    // Group headings have no record.
    QHash<const QTreeWidgetItem*, SFileTypeRecord> m_Records;
    QHash<unsigned int, QTreeWidgetItem*> m_Groups;
};
