#pragma once

#include <cstdint>

/// @file
/// The codes of the process messages, which are the tags under which they travel. I is the
/// interface (a parent of the daemon), M the daemon, S a process that it started. 16, 17 and 18
/// are free.

constexpr std::int32_t TL_MSG_STATUS = 1;               ///< I to M poll; M to I all statuses
constexpr std::int32_t TL_MSG_STOP = 2;                 ///< I to M, a position or -1
constexpr std::int32_t TL_MSG_EXIT = 3;                 ///< I to M
constexpr std::int32_t TL_MSG_SOLVER_STARTED = 4;       ///< S to M
constexpr std::int32_t TL_MSG_SOLVER_FINISHED = 5;      ///< S to M; M to I with reasons
constexpr std::int32_t TL_MSG_GET_STATUS_MESSAGE = 6;   ///< I to M: replay of end messages
constexpr std::int32_t TL_MSG_TEXT = 7;                 ///< S to M, for the user's eyes
constexpr std::int32_t TL_MSG_ERROR_TEXT = 8;           ///< S to M, a reason to come
constexpr std::int32_t TL_MSG_TRY_RECONNECT = 9;        ///< I to M
constexpr std::int32_t TL_MSG_RECONNECTED = 10;         ///< I to M
constexpr std::int32_t TL_MSG_SUSPEND_SUBTASK = 11;     ///< I to M; M to S
constexpr std::int32_t TL_MSG_NEW_STEERING = 12;        ///< I to M to S
constexpr std::int32_t TL_MSG_STEERING_VALUES = 13;     ///< S to M to I
constexpr std::int32_t TL_MSG_ASK_STEERING = 14;        ///< S to M
constexpr std::int32_t TL_MSG_RESET_STEERING = 15;      ///< S to M
constexpr std::int32_t TL_MSG_RECONNECTED_OTHER = 19;   ///< I to M
constexpr std::int32_t TL_MSG_PROCESS_ID = 20;          ///< I to M, S to M
constexpr std::int32_t TL_MSG_SAVE_SOLUTION = 21;       ///< I to M; M to S
constexpr std::int32_t TL_MSG_RETRIEVE_SOLUTION = 22;   ///< S to M
constexpr std::int32_t TL_MSG_SOLUTION_RETRIEVED = 23;  ///< M to S
constexpr std::int32_t TL_MSG_ACK = 24;                 ///< M to S
constexpr std::int32_t TL_MSG_NO_TASK_FILE = 25;        ///< M to I, plus 10000
constexpr std::int32_t TL_MSG_CANNOT_OPEN = 26;         ///< M to I, plus 10000
constexpr std::int32_t TL_MSG_WRONG_FORMAT = 27;        ///< M to I, plus 10000
constexpr std::int32_t TL_MSG_CHILD_TID = 28;           ///< S to M
constexpr std::int32_t TL_MSG_PERFORMANCE_CURVE = 29;   ///< I to M
constexpr std::int32_t TL_MSG_SUSPEND_TASK = 30;        ///< I to M
