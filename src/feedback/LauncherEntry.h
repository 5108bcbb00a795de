#pragma once

// Raises or clears the urgent flag of the program's launcher entry, which docks and task
// managers listen to on the session bus. Does nothing where there is no session bus.
void setLauncherUrgent(bool urgent);
