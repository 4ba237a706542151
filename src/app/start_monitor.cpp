#include "app/start_monitor.h"
#include "app/my_product_info.h"
#include "app/run_file.h"

void CALLBACK StartMonitor(HWND, HINSTANCE, const char*, int) {
    RunSatelliteFile(nullptr, GetMyProductInfo().GetAutoUpdateFile(), L"/QUIET", nullptr);
}
