#include "patients/dialoguesouverts.h"

#include <QDialog>
#include <QEvent>

namespace {

int *g_compteur = nullptr;

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
            m_compte = g_compteur;
            if (m_compte)
                ++*m_compte;
        } else if (evenement->type() == QEvent::Hide) {
            rendre();
        }
        return QObject::eventFilter(objet, evenement);
    }

    ~Compteur() override { rendre(); }

private:
    // Given back only to the counter it was taken from, if that one is still
    // the main window's.
    void rendre()
    {
        if (m_compte && m_compte == g_compteur)
            --*m_compte;
        m_compte = nullptr;
    }

    int *m_compte = nullptr;
};

} // namespace

void CompterDialogueOuvert(QDialog *dialogue)
{
    new Compteur(dialogue);
}

void FixerCompteurDialogues(int *compteur)
{
    g_compteur = compteur;
}

void RetirerCompteurDialogues(const int *compteur)
{
    if (g_compteur == compteur)
        g_compteur = nullptr;
}
