#include "platform/system/messages.h"

#include <memory>
#include <mutex>
#include <unordered_map>

#include "platform/system/main_queue.h"
#include "platform/system/threads.h"

namespace vyn {

namespace window_table {

// Window procedures by number. Shared, because a procedure may free its own window while it runs.
struct Table {
    std::mutex mutex;
    std::unordered_map<HWND, std::shared_ptr<const WindowProcedure>> windows;
    HWND last = 0;
};

Table& TheTable() {
    static Table* table = new Table;  // outlives the objects that free their windows while the process ends
    return *table;
}

std::shared_ptr<const WindowProcedure> Find(HWND handle) {
    std::lock_guard<std::mutex> lock(TheTable().mutex);
    const auto found = TheTable().windows.find(handle);
    return found == TheTable().windows.end() ? nullptr : found->second;
}

}  // namespace window_table

HWND AllocateHWnd(WindowProcedure procedure) {
    auto shared = std::make_shared<const WindowProcedure>(std::move(procedure));
    std::lock_guard<std::mutex> lock(window_table::TheTable().mutex);
    const HWND handle = ++window_table::TheTable().last;
    window_table::TheTable().windows.emplace(handle, std::move(shared));
    return handle;
}

void DeallocateHWnd(HWND handle) {
    std::shared_ptr<const WindowProcedure> kept;  // freed after the lock is
    std::lock_guard<std::mutex> lock(window_table::TheTable().mutex);
    const auto found = window_table::TheTable().windows.find(handle);
    if (found == window_table::TheTable().windows.end()) return;
    kept = std::move(found->second);
    window_table::TheTable().windows.erase(found);
}

bool IsWindow(HWND handle) { return window_table::Find(handle) != nullptr; }

intptr_t SendMessage(HWND handle, uint32_t message, intptr_t wParam, intptr_t lParam) {
    intptr_t result = 0;
    TThread::Synchronize([&] {
        const auto procedure = window_table::Find(handle);
        if (!procedure) return;
        TMessage record{message, wParam, lParam, 0};
        (*procedure)(record);
        result = record.Result;
    });
    return result;
}

bool PostMessage(HWND handle, uint32_t message, intptr_t wParam, intptr_t lParam) {
    if (!IsWindow(handle)) return false;
    main_queue::PostWindowMessage(handle, message, wParam, lParam);
    return true;
}

}  // namespace vyn
