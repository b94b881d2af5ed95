// Numbers of the sample host's dialogs, menus, commands and controls.
#pragma once

#define IDI_HOST 1
#define IDR_MENU 10
#define IDR_ACCELERATORS 11
#define IDR_ROW_MENU 12

#define IDD_MAIN 20
#define IDD_LOGIN 21

#define IDM_NEW 100
#define IDM_REFRESH 101
#define IDM_FIND 102
#define IDM_DELETED 103
#define IDM_COPY_CODE 104
#define IDM_EXIT 105
#define IDM_ABOUT 106
#define IDM_OPEN 107

#ifndef IDC_STATIC
#define IDC_STATIC (-1)  // texts that nobody asks for
#endif
#define IDC_SEARCH_LABEL 200
#define IDC_SEARCH 201
#define IDC_DELETED 202
#define IDC_PRODUCTS 203
#define IDC_NEW 204
#define IDC_REFRESH 205
#define IDC_STATUS 206

#define IDC_USER 220
#define IDC_PASSWORD 221
#define IDC_SERVER_LABEL 222
#define IDC_SERVER 223
#define IDC_LOGIN_NOTE 224
