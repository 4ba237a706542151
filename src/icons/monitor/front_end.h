#pragma once

class MyMonitor_Wnd;

/// The face of the monitor: what it shows in the notification area and what it asks there. It
/// stands above the monitor, which knows only this and calls it at the places of its round. All
/// calls come on the monitor's thread.
class MonitorFrontEnd {
  public:
    /// Once per DoMonitor, before the desktop is looked for: the day counter.
    virtual void OnMonitorStart() = 0;
    /// The window of a round stands and watches: make the icon. With bAnnounce also say so.
    virtual void OnRoundStart(MyMonitor_Wnd& monitor, bool bAnnounce) = 0;
    /// The user asked for a menu.
    virtual void OnMenuRequest(MyMonitor_Wnd& monitor) = 0;
    /// The capture that the user asked for is done; pszText says with what outcome.
    virtual void OnCaptureOutcome(const wchar_t* pszText) = 0;
    /// The monitor window is about to go: take the icon away.
    virtual void OnMonitorClose() = 0;
    /// The round's message loop has ended: give up what belongs to the round.
    virtual void OnRoundEnd() = 0;
    /// The icons were put back after the displays had changed; pszText says so.
    virtual void OnIconsPutBack(const wchar_t* pszText) = 0;

  protected:
    ~MonitorFrontEnd() = default; // nobody owns one as such
};
