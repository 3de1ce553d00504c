// Who makes the program and where they are reached. A release replaces this one file.
#ifndef MOSAICON_MAKER_H_
#define MOSAICON_MAKER_H_

inline constexpr char kMakerName[] = "Kovel Software";
inline constexpr char kSupportEmail[] = "support@kovel-software.example";
inline constexpr char kContactEmail[] = "info@kovel-software.example";
inline constexpr char kMakerWebAddress[] = "https://www.kovel-software.example";
inline constexpr char kUpdateAddress[] = "https://ftp.kovel-software.example/mosaicon/";

#endif  // MOSAICON_MAKER_H_
