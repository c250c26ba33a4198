#include "shell/base/modal.h"

#include <QDialog>

namespace {
ExecuteurDialogue g_executeur;
}

int ExecuterDialogue(QDialog &dialogue)
{
    if (g_executeur)
        return g_executeur(dialogue);
    return dialogue.exec();
}

ExecuteurInstalle::ExecuteurInstalle(ExecuteurDialogue executeur)
    : m_precedent(std::move(g_executeur))
{
    g_executeur = std::move(executeur);
}

ExecuteurInstalle::~ExecuteurInstalle()
{
    g_executeur = std::move(m_precedent);
}
