# The worlds at the edge. Each sees only the ports that it implements.

wegslot_module(line_threads THREADED
  FILES base/linux/line_threads.cpp base/linux/line_threads.h
  TESTS base/linux/line_threads_test.cpp
  USES base
  LIBRARIES Threads::Threads)

wegslot_module(file_log THREADED
  FILES log/linux/file_log.cpp log/linux/file_log.h
  TESTS log/linux/file_log_test.cpp
  USES base line_threads log)

wegslot_module(files_linux
  FILES
    files/linux/file_content.cpp files/linux/file_content.h files/linux/made_private.cpp
    files/linux/made_private.h files/linux/own_file.cpp
    files/linux/own_file.h files/linux/replace_file.cpp files/linux/replace_file.h
  TESTS
    files/linux/file_content_test.cpp files/linux/made_private_test.cpp
    files/linux/own_file_test.cpp files/linux/replace_file_test.cpp)

wegslot_module(identity_linux
  FILES
    identity/linux/asked_identity.cpp identity/linux/asked_identity.h
    identity/linux/identities_file.cpp identity/linux/identities_file.h
    identity/linux/locked_memory.cpp identity/linux/locked_memory.h
    identity/linux/secret_text.cpp identity/linux/secret_text.h
  TESTS
    identity/linux/identities_file_test.cpp identity/linux/locked_memory_test.cpp
    identity/linux/secret_text_test.cpp
  USES base files_linux identity)

wegslot_module(history_linux THREADED
  FILES
    history/linux/database.cpp history/linux/database.h history/linux/history_file.cpp
    history/linux/history_file.h history/linux/history_file_read.cpp
    history/linux/history_writer.cpp history/linux/history_writer.h
    history/linux/kept_history.cpp history/linux/kept_history.h history/linux/place.cpp
    history/linux/place.h history/linux/schema.cpp history/linux/schema.h
  TESTS
    history/linux/history_faults_test.cpp history/linux/history_file_test.cpp
    history/linux/history_writer_test.cpp
  USES base files_linux history line_threads log monitor platform scanner settings
  LIBRARIES PkgConfig::SQLITE)

wegslot_module(preferences_file
  FILES model/linux/preferences_file.cpp model/linux/preferences_file.h
  TESTS model/linux/preferences_file_test.cpp
  USES base files_linux log settings
  LIBRARIES nlohmann_json::nlohmann_json)

wegslot_module(dbus
  FILES
    dbus/bus.cpp dbus/bus.h dbus/bus_address.cpp dbus/bus_address.h dbus/caller.cpp
    dbus/caller.h dbus/connection.cpp dbus/connection.h
    dbus/forgeries.cpp dbus/forgeries.h dbus/message.cpp dbus/message.h dbus/object.cpp
    dbus/object.h dbus/writer.cpp dbus/writer.h
  USES base log
  LIBRARIES PkgConfig::SYSTEMD)

wegslot_module(bluez
  FILES
    scanner/bluez/advertisement_monitor.cpp scanner/bluez/advertisement_monitor.h
    scanner/bluez/assigned_numbers.cpp scanner/bluez/assigned_numbers.h
    scanner/bluez/bluez_central.cpp scanner/bluez/bluez_central.h
    scanner/bluez/central_state.cpp scanner/bluez/central_state.h
    scanner/bluez/connections.cpp scanner/bluez/connections.h
    scanner/bluez/discovery.cpp scanner/bluez/discovery.h
    scanner/bluez/gatt_client.cpp scanner/bluez/gatt_client.h scanner/bluez/gatt_tree.cpp
    scanner/bluez/gatt_tree.h scanner/bluez/hci_links.cpp scanner/bluez/hci_links.h
    scanner/bluez/hci_wire.cpp scanner/bluez/hci_wire.h scanner/bluez/hearing.cpp
    scanner/bluez/hearing.h scanner/bluez/links.h scanner/bluez/loss_text.cpp
    scanner/bluez/loss_text.h scanner/bluez/object_tree.cpp scanner/bluez/object_tree.h
    scanner/bluez/object_watch.cpp scanner/bluez/object_watch.h scanner/bluez/teller.h
  TESTS
    scanner/bluez/assigned_numbers_test.cpp scanner/bluez/central_state_test.cpp
    scanner/bluez/hci_wire_test.cpp scanner/bluez/hearing_test.cpp
    scanner/bluez/loss_text_test.cpp
  USES base device_id log scanner dbus)

wegslot_module(coupling_linux
  FILES coupling/linux/pairable_note.cpp coupling/linux/pairable_note.h
  TESTS coupling/linux/pairable_note_test.cpp
  USES files_linux log)

wegslot_module(coupling_bluez
  FILES
    coupling/bluez/answers.cpp coupling/bluez/answers.h
    coupling/bluez/bluez_coupling_radio.cpp coupling/bluez/bluez_coupling_radio.h
    coupling/bluez/heart_rate_service.cpp coupling/bluez/heart_rate_service.h
    coupling/bluez/later_removal.cpp coupling/bluez/later_removal.h
    coupling/bluez/obstacle.cpp coupling/bluez/obstacle.h coupling/bluez/pairable.cpp
    coupling/bluez/pairable.h coupling/bluez/pairing_agent.cpp coupling/bluez/pairing_agent.h
    coupling/bluez/peripheral_advertisement.cpp coupling/bluez/peripheral_advertisement.h
    coupling/bluez/removal.cpp coupling/bluez/removal.h
    coupling/bluez/served.cpp coupling/bluez/served.h coupling/bluez/stay.cpp
    coupling/bluez/stay.h coupling/bluez/teller.h coupling/bluez/visits.cpp
    coupling/bluez/visits.h
  TESTS coupling/bluez/answers_test.cpp coupling/bluez/obstacle_test.cpp
  USES base bluez coupling coupling_linux dbus device_id log scanner)

wegslot_module(random_uuid
  FILES platform/linux/random_uuid.cpp platform/linux/random_uuid.h
  TESTS platform/linux/random_uuid_test.cpp
  USES base)

wegslot_module(spawn_linux
  FILES platform/linux/spawn.cpp platform/linux/spawn.h
  USES base)

wegslot_module(platform_linux
  FILES
    platform/linux/display_environment.cpp platform/linux/display_environment.h
    platform/linux/linux_processes.cpp platform/linux/linux_processes.h
    platform/linux/login_session.cpp platform/linux/login_session.h
    platform/linux/logind_lock.cpp platform/linux/logind_lock.h
    platform/linux/process_table.cpp platform/linux/process_table.h
    platform/linux/screen_lock_watcher.cpp platform/linux/screen_lock_watcher.h
    platform/linux/screen_savers.cpp platform/linux/screen_savers.h
    platform/linux/system_clock.cpp platform/linux/system_clock.h
  TESTS platform/linux/display_environment_test.cpp
  USES base platform monitor dbus spawn_linux)

wegslot_wayland_protocols(idle_protocols
  ${CMAKE_CURRENT_SOURCE_DIR}/platform/linux/idle/ext-idle-notify-v1.xml
  ${CMAKE_CURRENT_SOURCE_DIR}/platform/linux/idle/org-kde-kwin-idle.xml)

wegslot_module(idle_linux
  FILES
    platform/linux/idle/ext_idle_notify.cpp platform/linux/idle/idle_protocol.h
    platform/linux/idle/idle_watch.cpp platform/linux/idle/idle_watch.h
    platform/linux/idle/kwin_idle.cpp platform/linux/idle/mutter_idle.cpp
    platform/linux/idle/mutter_idle.h platform/linux/idle/seat_idle.h
    platform/linux/idle/wayland_connection.cpp platform/linux/idle/wayland_connection.h
    platform/linux/idle/wayland_idle.cpp platform/linux/idle/wayland_idle.h
    platform/linux/idle/x11_idle.cpp platform/linux/idle/x11_idle.h
    platform/linux/idle/x11_server.cpp platform/linux/idle/x11_server.h
    platform/linux/idle/x11_worker.cpp platform/linux/idle/x11_worker.h
  TESTS platform/linux/idle/seat_idle_test.cpp
  USES base platform platform_linux dbus
  LIBRARIES idle_protocols PkgConfig::WAYLAND PkgConfig::XCB Threads::Threads)

wegslot_module(desktop_entry
  FILES
    platform/linux/media/desktop_entry.cpp platform/linux/media/desktop_entry.h
    platform/linux/media/desktop_entry_text.cpp platform/linux/media/desktop_entry_text.h
  TESTS
    platform/linux/media/desktop_entry_test.cpp
    platform/linux/media/desktop_entry_text_test.cpp
  USES base)

wegslot_module(media_linux
  FILES
    platform/linux/media/application_names.cpp platform/linux/media/application_names.h
    platform/linux/media/capture_devices.cpp platform/linux/media/capture_devices.h
    platform/linux/media/pipewire_calls.h
    platform/linux/media/pipewire_cameras.cpp platform/linux/media/pipewire_cameras.h
    platform/linux/media/pipewire_daemon.cpp platform/linux/media/pipewire_daemon.h
    platform/linux/media/pulse_microphone.cpp platform/linux/media/pulse_microphone.h
    platform/linux/media/recording_stream.cpp platform/linux/media/recording_stream.h
  TESTS
    platform/linux/media/application_names_test.cpp
    platform/linux/media/capture_devices_test.cpp
    platform/linux/media/recording_stream_test.cpp
  USES base desktop_entry files_linux platform platform_linux
  LIBRARIES PkgConfig::PULSE PkgConfig::PIPEWIRE)

wegslot_module(hud_linux
  FILES
    hud/linux/notice.cpp hud/linux/notice.h hud/linux/notifications.cpp
    hud/linux/notifications.h hud/linux/warning_notification.cpp
    hud/linux/warning_notification.h
    hud/linux/warning_sound.cpp hud/linux/warning_sound.h
  USES base hud dbus monitor
  LIBRARIES PkgConfig::CANBERRA Threads::Threads)

wegslot_module(background_qt
  FILES base/qt/qt_background.cpp base/qt/qt_background.h
  TESTS base/qt/qt_background_test.cpp
  USES base
  LIBRARIES Qt6::Core)

wegslot_module(brand_qt
  FILES ui/qt/brand_qt.cpp ui/qt/brand_qt.h
  TESTS ui/qt/brand_qt_test.cpp
  USES brand
  LIBRARIES Qt6::Gui)

wegslot_module(x11_qt
  FILES
    ui/qt/compositor.cpp ui/qt/compositor.h ui/qt/x11_bar_watch.cpp ui/qt/x11_bar_watch.h ui/qt/x11_server.cpp ui/qt/x11_server.h
  LIBRARIES Qt6::Gui PkgConfig::XCB)

wegslot_module(hud_qt
  FILES
    hud/qt/capsule_button.cpp hud/qt/capsule_button.h hud/qt/keyboard_loan.cpp
    hud/qt/keyboard_loan.h hud/qt/qt_warning_hud.cpp hud/qt/qt_warning_hud.h
    hud/qt/warning_panel.cpp hud/qt/warning_panel.h hud/qt/warning_picture.cpp
    hud/qt/warning_picture.h
  USES base hud brand brand_qt monitor x11_qt
  LIBRARIES Qt6::Widgets)

wegslot_module(ui_linux
  FILES
    ui/linux/autostart_item.cpp ui/linux/autostart_item.h
    ui/linux/color_scheme.cpp
    ui/linux/color_scheme.h ui/linux/desktop_opener.cpp ui/linux/desktop_opener.h
    ui/linux/tray_item.cpp ui/linux/tray_item.h ui/linux/tray_menu.cpp ui/linux/tray_menu.h
    ui/linux/tray_registration.cpp ui/linux/tray_registration.h
  TESTS ui/linux/autostart_item_test.cpp
  USES base brand dbus desktop_entry log platform files_linux tray ui_ports)

qt_add_resources(icon_resources ui/icons/icons.qrc)
set_source_files_properties(${icon_resources} PROPERTIES COMPILE_OPTIONS -w) # written by Qt's tool
wegslot_module(icons_qt
  FILES
    ui/qt/symbol_images.cpp ui/qt/symbol_images.h ui/qt/tray_painter.cpp ui/qt/tray_painter.h
  TESTS ui/qt/symbol_images_test.cpp
  USES base brand brand_qt devices phase_presentation tray
  LIBRARIES Qt6::Gui Qt6::Svg)
target_sources(wegslot_icons_qt PRIVATE ${icon_resources})

wegslot_module(widgets_qt
  FILES
    ui/qt/card.cpp ui/qt/card.h ui/qt/section_title.cpp ui/qt/section_title.h
    ui/qt/soft_shadow.cpp ui/qt/soft_shadow.h ui/qt/text_scale.cpp ui/qt/text_scale.h
    ui/qt/window_frame.cpp ui/qt/window_frame.h
  TESTS ui/qt/card_test.cpp ui/qt/section_title_test.cpp ui/qt/soft_shadow_test.cpp
  USES base brand brand_qt
  LIBRARIES Qt6::Widgets)

wegslot_module(panel_qt
  FILES
    ui/qt/panel/disclosure.cpp ui/qt/panel/disclosure.h ui/qt/panel/footer_view.cpp
    ui/qt/panel/footer_view.h ui/qt/panel/header_view.cpp ui/qt/panel/header_view.h
    ui/qt/panel/key_place_view.cpp ui/qt/panel/key_place_view.h
    ui/qt/panel/key_row_view.cpp ui/qt/panel/key_row_view.h ui/qt/panel/keys_view.cpp
    ui/qt/panel/keys_view.h ui/qt/panel/menu_button.cpp ui/qt/panel/menu_button.h
    ui/qt/panel/login_offer_view.cpp ui/qt/panel/login_offer_view.h
    ui/qt/panel/nearby_view.cpp ui/qt/panel/nearby_view.h ui/qt/panel/number_field.cpp
    ui/qt/panel/number_field.h ui/qt/panel/overhang.h ui/qt/panel/painting.cpp
    ui/qt/panel/painting.h ui/qt/panel/panel_button.cpp ui/qt/panel/panel_button.h
    ui/qt/panel/panel_context.h ui/qt/panel/panel_view.cpp ui/qt/panel/panel_view.h
    ui/qt/panel/panel_window.cpp ui/qt/panel/panel_window.h ui/qt/panel/section_view.h
    ui/qt/panel/settings_view.cpp ui/qt/panel/settings_view.h ui/qt/panel/signal_bar_view.cpp
    ui/qt/panel/signal_bar_view.h
    ui/qt/panel/small_parts.cpp ui/qt/panel/small_parts.h ui/qt/panel/spinner.cpp
    ui/qt/panel/spinner.h ui/qt/panel/stepper_view.cpp ui/qt/panel/stepper_view.h
    ui/qt/panel/text.cpp ui/qt/panel/text.h ui/qt/panel/threshold_slider.cpp
    ui/qt/panel/threshold_slider.h ui/qt/panel/toggles.cpp ui/qt/panel/toggles.h
    ui/qt/panel/update_view.cpp ui/qt/panel/update_view.h
  USES base devices settings scanner monitor brand phase_presentation update panel brand_qt
    x11_qt icons_qt widgets_qt
  LIBRARIES Qt6::Widgets)

wegslot_module(coupling_qt
  FILES ui/qt/coupling/coupling_window.cpp ui/qt/coupling/coupling_window.h
  USES base coupling scanner settings brand panel brand_qt icons_qt panel_qt
  LIBRARIES Qt6::Widgets)

wegslot_module(insight_qt
  FILES
    insight/qt/chosen_view.cpp insight/qt/chosen_view.h insight/qt/event_list.cpp
    insight/qt/event_list.h insight/qt/insight_window.cpp insight/qt/insight_window.h
    insight/qt/legend_view.cpp insight/qt/legend_view.h insight/qt/local_zone.cpp
    insight/qt/local_zone.h insight/qt/look.cpp insight/qt/look.h
    insight/qt/surroundings.h insight/qt/timeline_painter.cpp insight/qt/timeline_painter.h
    insight/qt/timeline_view.cpp insight/qt/timeline_view.h
  TESTS insight/qt/local_zone_test.cpp
  USES base brand brand_qt desktop_qt icons_qt insight monitor panel panel_qt phase_presentation
    widgets_qt
  LIBRARIES Qt6::Widgets)

wegslot_module(x11_tray_qt
  FILES ui/qt/x11_tray.cpp ui/qt/x11_tray.h
  TESTS ui/qt/x11_tray_test.cpp
  USES base brand log monitor phase_presentation tray icons_qt
  LIBRARIES Qt6::Widgets)

wegslot_module(desktop_qt
  FILES
    ui/qt/local_clock_time.cpp ui/qt/local_clock_time.h ui/qt/palette_scheme.cpp
    ui/qt/palette_scheme.h
  TESTS ui/qt/local_clock_time_test.cpp ui/qt/palette_scheme_test.cpp
  USES base brand monitor phase_presentation
  LIBRARIES Qt6::Gui)

wegslot_module(app_linux
  FILES
    app/linux/file_watch.cpp app/linux/file_watch.h app/linux/folders.cpp app/linux/folders.h
    app/linux/instance_lock.cpp app/linux/instance_lock.h app/linux/standard_output.cpp
    app/linux/standard_input.cpp app/linux/standard_input.h app/linux/standard_output.h app/linux/user_language.cpp app/linux/user_language.h
  TESTS app/linux/instance_lock_test.cpp app/linux/user_language_test.cpp
  USES base dbus files_linux line_threads)

wegslot_module(foreign_descriptor
  FILES recording/linux/foreign_descriptor.cpp recording/linux/foreign_descriptor.h
  LIBRARIES Threads::Threads)

wegslot_module(recording_linux THREADED
  FILES
    recording/linux/descriptor_sink.cpp recording/linux/descriptor_sink.h
  TESTS recording/linux/descriptor_sink_test.cpp
  USES base foreign_descriptor line_threads files_linux)

wegslot_module(control_linux
  FILES
    control/linux/activation.cpp control/linux/activation.h
    control/linux/control_client.cpp control/linux/control_client.h
    control/linux/control_service.cpp control/linux/control_service.h
  USES base log control dbus app_linux foreign_descriptor)

# Updates of the program itself: the disk, the network, and what joins them. Packages for a package
# manager leave all three out.
wegslot_module(real_updates FILES app/qt/real_updates.h USES dbus update)

if(WEGSLOT_UPDATES)
  wegslot_module(update_linux
    FILES
      update/linux/desktop_control.cpp update/linux/desktop_control.h
      update/linux/linux_installer.cpp update/linux/linux_installer.h
      update/linux/only_ours.cpp update/linux/only_ours.h
      update/linux/own_bundle.cpp update/linux/own_bundle.h
      update/linux/swap_script.h update/linux/tool.cpp update/linux/tool.h
      update/linux/unpacked_folder.cpp update/linux/unpacked_folder.h
    USES base files_linux log update dbus random_uuid spawn_linux)

  wegslot_module(update_qt
    FILES
      update/qt/curl_http_client.cpp update/qt/curl_http_client.h update/qt/curl_library.cpp
      update/qt/curl_library.h
      update/qt/web_address.cpp update/qt/web_address.h
    USES base update
    LIBRARIES Qt6::Core)
  # Its declarations alone: it is loaded when it is first needed.
  target_include_directories(wegslot_update_qt PRIVATE ${CURL_INCLUDE_DIRS})

  wegslot_module(real_updates_web
    FILES app/qt/real_updates.cpp
    USES real_updates app_linux background_qt dbus update update_linux update_qt
    LIBRARIES Qt6::Core)
  set(real_updates real_updates_web)
else()
  wegslot_module(real_updates_left_out FILES app/qt/real_updates_left_out.cpp USES real_updates)
  set(real_updates real_updates_left_out)
endif()

wegslot_module(app_qt
  FILES
    app/qt/appearance.h app/qt/application.cpp app/qt/application.h app/qt/bus_pump.cpp
    app/qt/bus_pump.h app/qt/check.cpp app/qt/check.h app/qt/coupling_assistant.cpp
    app/qt/coupling_assistant.h app/qt/demo_windows.h app/qt/display.cpp
    app/qt/display.h app/qt/insight.cpp app/qt/insight.h app/qt/menu_panel.cpp app/qt/menu_panel.h
    app/qt/qt_descriptors.cpp app/qt/qt_descriptors.h
    app/qt/qt_scheduler.cpp app/qt/qt_scheduler.h app/qt/real_world.cpp
    app/qt/real_world.h app/qt/running_application.cpp app/qt/running_application.h
    app/qt/snapshot.cpp app/qt/snapshot.h app/qt/status_icon.cpp app/qt/status_icon.h
    app/qt/terminal.cpp app/qt/terminal.h app/qt/termination.cpp app/qt/termination.h app/qt/warning.cpp app/qt/warning.h
  TESTS app/qt/display_test.cpp app/qt/qt_loop_test.cpp
  USES
    background_qt history history_linux insight insight_qt     base coupling coupling_bluez file_log identity identity_linux log line_threads random_uuid settings preferences_file files_linux scanner monitor hud hud_linux
    hud_qt app_model app_commands dbus bluez platform platform_linux idle_linux media_linux app_linux control_linux brand tray
    ui_linux icons_qt x11_qt x11_tray_qt desktop_qt phase_presentation update real_updates panel panel_qt
    ui_ports control coupling coupling_bluez coupling_linux coupling_qt foreign_descriptor recording recording_linux stage
  LIBRARIES Qt6::Widgets)
target_link_libraries(wegslot_app_qt PUBLIC wegslot_${real_updates})

wegslot_program(wegslot
  OUTPUT wegslot
  FILES app/main.cpp
  USES base app_commands app_linux app_qt update
  LIBRARIES Qt6::Core)
