#pragma once
#include <windows.h>
#include <string>
#include <vector>

/// The displays of the test desktop. What a test changes is put back when the object goes, and
/// every window hears of it as it does on a real desktop.
class Displays {
  public:
    Displays();
    ~Displays();
    Displays(const Displays&) = delete;
    Displays& operator=(const Displays&) = delete;

    /// Gives the one display another size, which must be one of its modes; it may be the size that
    /// it has. Takes the others away. Returns when everybody has been told. Throws
    /// std::runtime_error.
    void SetSize(SIZE size);
    SIZE Size() const;
    /// Puts further displays beside the first one, in screen coordinates, in the place of those
    /// that there may be. They are there until the next change, or until any program starts: the
    /// test platform looks for its displays anew then.
    void PlugIn(const std::vector<RECT>& others);
    /// Takes them away.
    void Unplug() { PlugIn({}); }
    /// The taskbar has taken its place on the display of that size. It does so a moment later.
    void WaitForTaskbar() const;

  private:
    SIZE sizeBefore;
};
