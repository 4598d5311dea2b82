extern "C" void Fault();
void Fault() {}
