#include "e2e/support/mouse.h"
#include "e2e/support/unix_shell.h"
#include "support/input.h"

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {
constexpr DWORD kStepMs = 40; // between two movements: a drag needs to be seen as one
constexpr int kSteps = 8;

struct Step {
    enum class Kind { Move, Down, Up } kind;
    POINT pt;
    mouse::Button button;
};

class Hand {
  public:
    virtual ~Hand() = default;
    virtual void Do(const std::vector<Step>& steps) = 0;
};

/// One shell line with all steps.
class XdotoolHand final : public Hand {
  public:
    void Do(const std::vector<Step>& steps) override {
        std::wstring strLine = L"xdotool";
        for (const Step& step : steps) {
            std::wstring strButton = step.button == mouse::Button::Left ? L"1" : L"3";
            if (step.kind == Step::Kind::Move) {
                strLine +=
                    L" mousemove " + std::to_wstring(step.pt.x) + L" " + std::to_wstring(step.pt.y);
            } else {
                strLine +=
                    (step.kind == Step::Kind::Down ? L" mousedown " : L" mouseup ") + strButton;
            }
            strLine += L" sleep 0.04";
        }
        RunUnixShell(strLine);
    }
};

class PlatformHand final : public Hand {
  public:
    void Do(const std::vector<Step>& steps) override {
        for (const Step& step : steps) {
            if (step.kind == Step::Kind::Move) {
                Send(0, step.pt);
            } else {
                bool bDown = step.kind == Step::Kind::Down;
                bool bLeft = step.button == mouse::Button::Left;
                Send(bLeft ? (bDown ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP)
                           : (bDown ? MOUSEEVENTF_RIGHTDOWN : MOUSEEVENTF_RIGHTUP),
                     step.pt);
            }
            ::Sleep(kStepMs);
        }
    }

  private:
    static void Send(DWORD dwButton, POINT pt) {
        INPUT input = MouseInput(dwButton, pt);
        if (!::SendInput(1, &input, sizeof(input))) throw std::runtime_error("SendInput failed");
    }
};

Hand& TheHand() {
    static XdotoolHand xdotool;
    static PlatformHand platform;
    if (!UsesXdotool()) return platform;
    return xdotool;
}
} // namespace

void mouse::MoveTo(POINT pt) { TheHand().Do({{Step::Kind::Move, pt, Button::Left}}); }

void mouse::Click(POINT pt, Button button) {
    TheHand().Do({{Step::Kind::Move, pt, button},
                  {Step::Kind::Down, pt, button},
                  {Step::Kind::Up, pt, button}});
}

void mouse::Drag(POINT ptFrom, POINT ptTo, Button button, const std::function<void()>& onDown,
                 const std::function<void()>& onHalfway) {
    std::vector<Step> steps{{Step::Kind::Move, ptFrom, button}, {Step::Kind::Down, ptFrom, button}};
    if (onDown) {
        TheHand().Do(std::exchange(steps, {}));
        onDown();
    }
    for (int n = 1; n <= kSteps; ++n) {
        POINT pt{ptFrom.x + (ptTo.x - ptFrom.x) * n / kSteps,
                 ptFrom.y + (ptTo.y - ptFrom.y) * n / kSteps};
        steps.push_back({Step::Kind::Move, pt, button});
        if (!onHalfway || n != kSteps / 2) continue;
        TheHand().Do(std::exchange(steps, {}));
        onHalfway();
    }
    steps.push_back({Step::Kind::Up, ptTo, button});
    for (int n = 1; n <= 3; ++n) {
        steps.push_back({Step::Kind::Move, {ptTo.x + n, ptTo.y + n}, button});
    }
    TheHand().Do(steps);
}
