// The multimedia library (WINMM), which is bound at run time only.
#pragma once

#include "platform/host/mmsystem_errors.h"
#include "platform/host/windows_types.h"

DWORD WINAPI timeGetTime();

// ---- wave and MIDI devices ----

inline constexpr int MAXPNAMELEN = 32;

inline constexpr DWORD WAVE_FORMAT_1M08 = 0x001;
inline constexpr DWORD WAVE_FORMAT_1S08 = 0x002;
inline constexpr DWORD WAVE_FORMAT_1M16 = 0x004;
inline constexpr DWORD WAVE_FORMAT_1S16 = 0x008;
inline constexpr DWORD WAVE_FORMAT_2M08 = 0x010;
inline constexpr DWORD WAVE_FORMAT_2S08 = 0x020;
inline constexpr DWORD WAVE_FORMAT_2M16 = 0x040;
inline constexpr DWORD WAVE_FORMAT_2S16 = 0x080;
inline constexpr DWORD WAVE_FORMAT_4M08 = 0x100;
inline constexpr DWORD WAVE_FORMAT_4S08 = 0x200;
inline constexpr DWORD WAVE_FORMAT_4M16 = 0x400;
inline constexpr DWORD WAVE_FORMAT_4S16 = 0x800;

inline constexpr WORD MOD_MIDIPORT = 1;
inline constexpr WORD MOD_SYNTH = 2;
inline constexpr WORD MOD_SQSYNTH = 3;
inline constexpr WORD MOD_FMSYNTH = 4;
inline constexpr WORD MOD_MAPPER = 5;

struct WAVEINCAPSA {
  WORD wMid;
  WORD wPid;
  UINT vDriverVersion;
  CHAR szPname[MAXPNAMELEN];
  DWORD dwFormats;
  WORD wChannels;
  WORD wReserved1;
};

struct WAVEOUTCAPSA {
  WORD wMid;
  WORD wPid;
  UINT vDriverVersion;
  CHAR szPname[MAXPNAMELEN];
  DWORD dwFormats;
  WORD wChannels;
  WORD wReserved1;
  DWORD dwSupport;
};

struct MIDIINCAPSA {
  WORD wMid;
  WORD wPid;
  UINT vDriverVersion;
  CHAR szPname[MAXPNAMELEN];
  DWORD dwSupport;
};

struct MIDIOUTCAPSA {
  WORD wMid;
  WORD wPid;
  UINT vDriverVersion;
  CHAR szPname[MAXPNAMELEN];
  WORD wTechnology;
  WORD wVoices;
  WORD wNotes;
  WORD wChannelMask;
  DWORD dwSupport;
};

UINT WINAPI waveInGetNumDevs();
UINT WINAPI waveOutGetNumDevs();
UINT WINAPI midiInGetNumDevs();
UINT WINAPI midiOutGetNumDevs();
// The size is the record's. No device of the number: MMSYSERR_BADDEVICEID.
MMRESULT WINAPI waveInGetDevCapsA(UINT_PTR device, WAVEINCAPSA* capabilities, UINT size);
MMRESULT WINAPI waveOutGetDevCapsA(UINT_PTR device, WAVEOUTCAPSA* capabilities, UINT size);
MMRESULT WINAPI midiInGetDevCapsA(UINT_PTR device, MIDIINCAPSA* capabilities, UINT size);
MMRESULT WINAPI midiOutGetDevCapsA(UINT_PTR device, MIDIOUTCAPSA* capabilities, UINT size);

// ---- joysticks: winmm_joysticks.cpp ----

struct JOYINFO {
  UINT wXpos;
  UINT wYpos;
  UINT wZpos;
  UINT wButtons;
};
using LPJOYINFO = JOYINFO*;

inline constexpr MMRESULT JOYERR_NOERROR = 0;
inline constexpr MMRESULT JOYERR_PARMS = 165;
inline constexpr MMRESULT JOYERR_UNPLUGGED = 167;

UINT WINAPI joyGetNumDevs();
// A joystick that answers stands in the middle, with no button pressed.
MMRESULT WINAPI joyGetPos(UINT joystick, LPJOYINFO position);
