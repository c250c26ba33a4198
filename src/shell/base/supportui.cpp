#include "shell/base/supportui.h"

#include "shell/base/prompt.h"
#include "shell/base/support.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QComboBox>
#include <QFontMetrics>
#include <QListView>
#include <QScrollBar>

namespace {

// Keeps a list view's horizontal scroll range wide enough for a given
// extent. The view recomputes the range from its items whenever it lays them
// out or is resized; the keeper raises it again each time, so the extent
// holds as long as the view lives, as a list box's horizontal extent does.
class EtendueHorizontale final : public QObject
{
public:
    explicit EtendueHorizontale(QListView *vue)
        : QObject(vue)
        , m_vue(vue)
    {
        setObjectName(nomObjet());
        connect(vue->horizontalScrollBar(), &QScrollBar::rangeChanged, this, &EtendueHorizontale::ajuster);
    }

    static QString nomObjet() { return QStringLiteral("mListBoxHorizontalExtent"); }

    void fixer(int largeur)
    {
        m_largeur = largeur;
        ajuster();
    }

private:
    void ajuster()
    {
        QScrollBar *barre = m_vue->horizontalScrollBar();
        const int maximum = m_largeur - m_vue->viewport()->width();
        // Setting the range emits rangeChanged again, but then the maximum is
        // reached and nothing more happens.
        if (barre->maximum() < maximum)
            barre->setRange(barre->minimum(), maximum);
    }

    QListView *m_vue;
    int m_largeur = 0;
};

// The longest entry by its number of characters; the first of equal ones.
QString plusLongue(const QStringList &entrees)
{
    QString longue;
    for (const QString &e : entrees) {
        if (e.size() > longue.size())
            longue = e;
    }
    return longue;
}

} // namespace

void RemplirCombosDuree(QComboBox *combo, bool sans1minute, bool joursSeuls)
{
    combo->addItems(ListeDurees(sans1minute, joursSeuls));
}

void mListBoxAdjustHScroll(QWidget *controle)
{
    auto *liste = qobject_cast<QListView *>(controle);
    auto *combo = qobject_cast<QComboBox *>(controle);
    if (!liste && !combo) {
        Prompt::informer(QStringLiteral("Tavonel"),
                         QStringLiteral("mListBoxAdjustHScroll: Invalid argument value for ctlControl."),
                         Prompt::Icone::Aucune);
        return;
    }

    QStringList entrees;
    if (combo) {
        for (int i = 0; i < combo->count(); ++i)
            entrees << combo->itemText(i);
    } else if (QAbstractItemModel *modele = liste->model()) {
        const QModelIndex racine = liste->rootIndex();
        for (int i = 0; i < modele->rowCount(racine); ++i)
            entrees << modele->index(i, liste->modelColumn(), racine).data(Qt::DisplayRole).toString();
    }

    const int largeur = mlStringLenInControl(controle, plusLongue(entrees));
    if (largeur == 0)
        return;
    const int etendue = largeur + 4;

    if (combo) {
        // The drop-down list is as wide as the longest entry.
        combo->view()->setMinimumWidth(etendue);
        return;
    }
    if (liste->horizontalScrollBarPolicy() == Qt::ScrollBarAlwaysOff)
        liste->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    // The keeper has no meta-object of its own: found by its name.
    auto *gardien = static_cast<EtendueHorizontale *>(
        liste->findChild<QObject *>(EtendueHorizontale::nomObjet(), Qt::FindDirectChildrenOnly));
    if (!gardien)
        gardien = new EtendueHorizontale(liste);
    gardien->fixer(etendue);
}

int mlStringLenInControl(QWidget *controle, const QString &texte)
{
    // Without a control the text is measured in the application's font, as
    // on the screen.
    const QFontMetrics mesure(controle ? controle->font() : QApplication::font());
    return mesure.horizontalAdvance(texte);
}

void ChoisirTexte(QComboBox *liste, const QString &texte)
{
    // A value that another program wrote outside the list is kept as it
    // is, not lost at the next save.
    if (!texte.isEmpty() && liste->findText(texte) < 0)
        liste->addItem(texte);
    liste->setCurrentIndex(liste->findText(texte));
}
