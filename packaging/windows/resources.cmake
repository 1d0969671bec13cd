# What Windows wants to find inside of programs and libraries. Elsewhere the functions do nothing.

# Gives a target its version resource.
#   name         of the file, without the ending
#   version      four parts
#   description  what people are shown
function(qrvrc_version_resource target name version description)
    if(NOT WIN32)
        return()
    endif()
    get_target_property(type ${target} TYPE)
    set(QRVRC_RC_TYPE VFT_DLL)
    set(QRVRC_RC_FILE ${name}.dll)
    set(QRVRC_RC_EXTRAS "")
    if(type STREQUAL "EXECUTABLE")
        set(QRVRC_RC_TYPE VFT_APP)
        set(QRVRC_RC_FILE ${name}.exe)
        set(QRVRC_RC_EXTRAS
            "1 ICON \"${PROJECT_SOURCE_DIR}/assets/shipped/icons/qrvv3rc.ico\"\n1 24 \"${PROJECT_SOURCE_DIR}/packaging/windows/program.manifest\"")
    endif()
    set(QRVRC_RC_NAME ${name})
    set(QRVRC_RC_VERSION ${version})
    string(REPLACE "." "," QRVRC_RC_NUMBERS ${version})
    set(QRVRC_RC_DESCRIPTION ${description})
    configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/module.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
endfunction()

# Makes an executable a program with windows: icon, manifest and version resource, no console, the name that users know.
function(qrvrc_windows_program target name description)
    if(NOT WIN32)
        return()
    endif()
    set_target_properties(${target} PROPERTIES OUTPUT_NAME ${name} WIN32_EXECUTABLE ON)
    qrvrc_version_resource(${target} ${name} ${PROJECT_VERSION} ${description})
endfunction()
