extern "C" void Fault();
void Fault() {
  asm volatile("inb $0x61, %%al" ::: "eax");
  asm volatile("lcall *(%%esp)" ::: "memory");
  asm volatile("movl %%cr0, %%eax" ::: "eax");
}
