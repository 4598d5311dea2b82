namespace hostscope {

void AskProcessor(unsigned leaf);
__attribute__((noinline)) void AskProcessor(unsigned leaf) {
  asm volatile("cpuid" : "+a"(leaf) : : "ebx", "ecx", "edx");
}

}  // namespace hostscope

extern "C" void Fault();
void Fault() {
  hostscope::AskProcessor(0);
}
