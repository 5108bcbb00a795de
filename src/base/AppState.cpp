#include "base/AppState.h"

AppState& App() {
    static AppState state;
    return state;
}
