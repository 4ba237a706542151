#include "app/launch/start_monitor.h"
#include "app/identity/my_product_info.h"
#include "app/launch/run_file.h"

void CALLBACK StartMonitor(HWND, HINSTANCE, const char*, int) {
    RunSatelliteFile(nullptr, GetMyProductInfo().GetAutoUpdateFile(), L"/QUIET", nullptr);
}
