#pragma once

#include <functional>

class QDialog;

// Every modal dialog of the program is run through here. The program runs
// them with exec(); a test installs a runner that fills and closes the
// dialog (or just records it), so that no test waits on a modal window.
int ExecuterDialogue(QDialog &dialogue);

using ExecuteurDialogue = std::function<int(QDialog &)>;

// Installs a runner for the lifetime of the object.
class ExecuteurInstalle final
{
public:
    explicit ExecuteurInstalle(ExecuteurDialogue executeur);
    ~ExecuteurInstalle();
    ExecuteurInstalle(const ExecuteurInstalle &) = delete;
    ExecuteurInstalle &operator=(const ExecuteurInstalle &) = delete;

private:
    ExecuteurDialogue m_precedent;
};
