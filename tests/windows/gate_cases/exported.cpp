extern "C" __declspec(dllexport) void Fault();
void Fault() {}
