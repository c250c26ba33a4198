#include "patients/dialoguesouverts.h"

#include "shell/window/frmmain.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>

namespace {

frmMain *fenetrePrincipale()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (auto *f = qobject_cast<frmMain *>(w))
            return f;
    }
    return nullptr;
}

class Compteur final : public QObject
{
public:
    explicit Compteur(QDialog *dialogue)
        : QObject(dialogue)
    {
        dialogue->installEventFilter(this);
    }

    bool eventFilter(QObject *objet, QEvent *evenement) override
    {
        if (evenement->type() == QEvent::Show && !m_compte) {
            if (frmMain *f = fenetrePrincipale()) {
                ++f->DialoguesOuverts;
                m_compte = true;
            }
        } else if (evenement->type() == QEvent::Hide && m_compte) {
            if (frmMain *f = fenetrePrincipale())
                --f->DialoguesOuverts;
            m_compte = false;
        }
        return QObject::eventFilter(objet, evenement);
    }

    ~Compteur() override
    {
        if (m_compte) {
            if (frmMain *f = fenetrePrincipale())
                --f->DialoguesOuverts;
        }
    }

private:
    bool m_compte = false;
};

} // namespace

void CompterDialogueOuvert(QDialog *dialogue)
{
    new Compteur(dialogue);
}
