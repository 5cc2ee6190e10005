-- Makes a session for check-ardour, or opens that again and exports it, by what the environment says: SESSION its folder,
-- FRAMES the engine's block. With EXPORT, a folder, it is exported there; otherwise it is made. With OUTPUT it is one with the
-- plug-in of many outputs, of which that one is heard: 0 the mix, 1 to 16 a pad's. With LOOP it is opened at the JACK server
-- and its loop range is played for so many seconds.

local name = "groove"
local rate = 48000
local beat = Temporal.ticks_per_beat
local float_wave = "c5a61d2c-6f2b-4a4f-9d0f-5a3c1c0f7e11"

local function channels(kind, count)
    return ARDOUR.ChanCount(ARDOUR.DataType(kind), count)
end

local function set_tempos(tempos)
    local map = Temporal.TempoMap.fetch_writable()
    for _, tempo in ipairs(tempos) do
        local at = Temporal.timepos_t.from_ticks(math.floor(tempo[1] * beat))
        map:set_tempo(Temporal.Tempo(tempo[2], tempo[2], 4), at)
    end
    Temporal.TempoMap.update(map)
end

local function lead_all_out(track)
    track:set_strict_io(false)
    assert(track:customize_plugin_insert(track:nth_plugin(0), 1, channels("audio", 34), channels("audio", 0)),
        "Ardour doesn't give the plug-in all of its outputs")
    -- Otherwise it spreads them as if they stood in a circle.
    track:panner_shell():set_bypassed(true)
end

-- The master gets a pair of a track's outputs and no other.
local function connect(track, output)
    local ports = track:output()
    for index = 0, ports:n_ports():n_audio() - 1 do
        ports:audio(index):disconnect_all()
    end
    for side = 0, 1 do
        ports:audio(2 * output + side):connect("Master/audio_in " .. side + 1)
    end
end

local function add_track(output)
    local uri = "urn:marnoth:instrument" .. (output and "-multi" or "")
    local info = ARDOUR.LuaAPI.new_plugin_info(uri, ARDOUR.PluginType.LV2)
    assert(not info:isnil(), "Ardour doesn't find the plug-in")
    local track = Session:new_midi_track(channels("midi", 1), channels("audio", 2), not output, info, nil, nil, 1, "Groove",
        ARDOUR.PresentationInfo.max_order, ARDOUR.TrackMode.Normal, true):front()
    if output then
        lead_all_out(track)
    end
    connect(track, output or 0)
    return track
end

local function load_preset(track)
    local plugin = track:nth_plugin(0):to_insert():plugin(0)
    assert(plugin:load_preset(plugin:preset_by_label("Groove")), "the preset isn't loaded")
end

local function save()
    Session:save_state("", false, false, false, false, false)
end

local function make(folder, output)
    create_session(folder, name, rate)
    set_tempos({{0, 100}, {8, 150}, {13, 93.75}})
    load_preset(add_track(output))
    for _ = 1, 3 do
        save()
    end
end

local function export(folder, to, frames, output)
    load_session(folder, name)
    if output then
        connect(Session:route_by_name("Groove"), output)
    end
    assert(Session:get_block_size() == frames, "the engine's blocks are others")
    save()
    local exported = Session:simple_export()
    assert(exported:set_preset(float_wave), "there is no preset of exports")
    exported:set_folder(to)
    exported:set_name("take-" .. frames)
    exported:set_range(0, 9 * rate)
    assert(exported:run_export(), "the export fails")
end

local function play_loop(folder, seconds)
    load_session(folder, name)
    Session:request_play_loop(true, false)
    ARDOUR.LuaAPI.usleep(1000000 * seconds)
    assert(Session:transport_rolling() and Session:get_play_loop(), "Ardour doesn't play the loop")
    Session:request_stop(false, false, ARDOUR.TransportRequestSource.TRS_UI)
    ARDOUR.LuaAPI.usleep(500000)
end

local folder = os.getenv("SESSION")
local frames, output, loop = tonumber(os.getenv("FRAMES")), tonumber(os.getenv("OUTPUT")), tonumber(os.getenv("LOOP"))
if loop then
    AudioEngine:set_backend("JACK", "ardour", "")
    play_loop(folder, loop)
else
    AudioEngine:set_backend("None (Dummy)", "check-ardour", "")
    AudioEngine:set_buffer_size(frames)
    if os.getenv("EXPORT") then
        export(folder, os.getenv("EXPORT"), frames, output)
    else
        make(folder, output)
    end
end
print("done")
close_session()
quit()
